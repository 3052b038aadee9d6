#include "Model/FrameSequence.h"

#include <algorithm>
#include <map>
#include <set>
#include <utility>

namespace Vantor {

namespace {

constexpr std::size_t kMostDigits = 9;

bool isDigit(wchar_t c)
{
    return c >= L'0' && c <= L'9';
}

/// A name taken apart around the last number before its extension.
struct NumberedName
{
    Text prefix, digits, suffix;
    int number = 0;
    std::size_t place = 0; ///< among all names
};

bool takeApart(const Text& name, NumberedName& parts)
{
    const Text::size_type dot = name.rfind(L'.');
    Text::size_type end = dot == Text::npos ? name.size() : dot;
    while (end > 0 && !isDigit(name[end - 1]))
        --end;
    Text::size_type begin = end;
    while (begin > 0 && isDigit(name[begin - 1]))
        --begin;
    if (begin == end || end - begin > kMostDigits)
        return false;
    parts.prefix = name.substr(0, begin);
    parts.digits = name.substr(begin, end - begin);
    parts.suffix = name.substr(end);
    for (Text::size_type i = begin; i < end; ++i)
        parts.number = parts.number * 10 + static_cast<int>(name[i] - L'0');
    return true;
}

/// Takes the runs out of names that have all but the number in common. Whoever pads with zeros does
/// so to one width.
void findRuns(std::vector<NumberedName> names, std::vector<FrameSequence>& found,
              std::set<std::size_t>& taken)
{
    const auto byNumber = [](const NumberedName& a, const NumberedName& b) {
        return a.number < b.number;
    };
    while (!names.empty()) {
        std::size_t width = kMostDigits;
        for (const NumberedName& name : names)
            width = std::min<std::size_t>(width, name.digits.size());
        const auto fits = [width](const NumberedName& name) {
            return name.digits == decimal(name.number, static_cast<unsigned int>(width));
        };
        const auto rest = std::stable_partition(names.begin(), names.end(), fits);
        std::sort(names.begin(), rest, byNumber);
        for (auto from = names.begin(); from != rest;) {
            auto to = from + 1;
            while (to != rest && to->number == (to - 1)->number + 1)
                ++to;
            const auto count = static_cast<int>(to - from);
            if (count >= FrameSequence::kFewest) {
                found.push_back({from->prefix, from->suffix, static_cast<unsigned int>(width),
                                 from->number, count});
                for (auto name = from; name != to; ++name)
                    taken.insert(name->place);
            }
            from = to;
        }
        names.erase(names.begin(), rest);
    }
}

} // namespace

Text FrameSequence::fileAt(int index) const
{
    return prefix + decimal(first + std::clamp(index, 0, std::max(count - 1, 0)), digits) + suffix;
}

Text FrameSequence::name() const
{
    return prefix + L"[" + decimal(first, digits) + L"-" + decimal(first + count - 1, digits) +
           L"]" + suffix;
}

FoundFiles findSequences(const std::vector<Text>& names)
{
    std::map<std::pair<Text, Text>, std::vector<NumberedName>> alike;
    for (std::size_t i = 0; i < names.size(); ++i) {
        NumberedName parts;
        parts.place = i;
        if (takeApart(names[i], parts))
            alike[{parts.prefix, parts.suffix}].push_back(parts);
    }
    FoundFiles files;
    std::set<std::size_t> taken;
    for (auto& [around, numbered] : alike)
        findRuns(std::move(numbered), files.sequences, taken);
    for (std::size_t i = 0; i < names.size(); ++i)
        if (!taken.contains(i))
            files.others.push_back(names[i]);
    return files;
}

} // namespace Vantor
