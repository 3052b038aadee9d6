#include "OS/Host/EffectCompiler/Messages.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

constexpr std::size_t kLongestText = 300;

/// Text of the effect may be any bytes: what would not print is written as \xNN.
std::string printable(const std::string& text)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string result;
    for (const char character : text) {
        if (result.size() >= kLongestText)
            return result + "..";
        const auto byte = static_cast<unsigned char>(character);
        if (byte >= 0x20 && byte != 0x7F)
            result += character;
        else
            result.append("\\x").append({kDigits[byte >> 4], kDigits[byte & 15]});
    }
    return result;
}

} // namespace

std::uint16_t Messages::addFile(const std::string& name)
{
    const auto next = static_cast<std::uint16_t>(std::min<std::size_t>(files_.size(), UINT16_MAX));
    const auto [known, isNew] = fileIndices_.try_emplace(name, next);
    if (isNew && files_.size() <= UINT16_MAX)
        files_.push_back(name);
    return known->second;
}

void Messages::error(SourcePlace place, const std::string& text)
{
    add(place, true, text);
}

void Messages::warning(SourcePlace place, const std::string& text)
{
    add(place, false, text);
}

void Messages::add(SourcePlace place, bool isError, const std::string& text)
{
    std::size_t& count = isError ? errors_ : warnings_;
    Line line{place, isError, printable(text)};
    if (count >= kMost || std::find(lines_.begin(), lines_.end(), line) != lines_.end())
        return;
    lines_.push_back(std::move(line));
    ++count;
}

std::string Messages::listing() const
{
    std::string result;
    for (const Line& line : lines_) {
        if (line.place.file < files_.size())
            result += files_[line.place.file];
        if (line.place.line != 0)
            result += "(" + std::to_string(line.place.line) + ")";
        result += line.isError ? " : error : " : " : warning : ";
        result += line.text + "\n";
    }
    return result;
}

} // namespace EffectCompiler
