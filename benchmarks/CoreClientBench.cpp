// Core, measured from a client of the shared library.

#include "support/PointerRows.h"

#include <OS/Core/LightweightString.h>

#include <QString>

#include <string>
#include <vector>

namespace {

using Bench::keep;
using Bench::timed;

template <class Text>
double copyText(const Text& text)
{
    constexpr int kCount = 1'000'000;
    return timed(kCount, [&] {
        for (int i = 0; i < kCount; ++i) {
            Text copy = text;
            keep(copy);
        }
    });
}

template <class Text, class C>
double pushBack()
{
    constexpr int kStrings = 20'000;
    constexpr int kChars = 256;
    return timed(double(kStrings) * kChars, [&] {
        for (int i = 0; i < kStrings; ++i) {
            Text text;
            for (int c = 0; c < kChars; ++c)
                text.push_back(static_cast<C>('a' + (c & 15)));
            keep(text);
        }
    });
}

// Neighbours of many equal strings: where the allocator happened to put one pair decides little.
template <class Text>
double compareTexts(const std::vector<Text>& texts)
{
    constexpr int kRounds = 120'000;
    const std::size_t pairs = texts.size() - 1;
    return timed(double(kRounds) * double(pairs), [&] {
        int sum = 0;
        for (int round = 0; round < kRounds; ++round)
            for (std::size_t i = 0; i < pairs; ++i) {
                keep(texts[i]);
                sum += texts[i].compare(texts[i + 1]);
            }
        keep(sum);
    });
}

template <class Text>
std::vector<Text> equalTexts()
{
    std::vector<Text> texts;
    for (unsigned int i = 0; i < 17; ++i)
        texts.push_back(Text(200, L'x'));
    return texts;
}

void compareCopies(std::uint32_t length)
{
    const Bench::SecondThread second;
    const LightweightString<char> ours(length, 'x');
    const QString qt(static_cast<int>(length), QLatin1Char('x'));
    const std::string standard(length, 'x');
    std::vector<Bench::Goal> goals = {{{"QString"}, 1.5},
                                      {{"std::string"}, length > 15 ? 0.4 : 0.0}};
    Bench::compare("copy of " + std::to_string(length) + " characters",
                   {{"ours", [&] { return copyText(ours); }},
                    {"QString", [&] { return copyText(qt); }},
                    {"std::string", [&] { return copyText(standard); }}},
                   goals);
}

} // namespace

int main()
{
    Bench::printHeader("Shared pointers in client code");
    Bench::comparePointers("copy and release",
                           {{{"boost::intrusive_ptr"}, 1.3}, {{"std::shared_ptr"}, 0.6}});

    Bench::printHeader("Strings in client code");
    for (const std::uint32_t length : {8u, 40u, 200u})
        compareCopies(length);
    Bench::compare("push_back of 256 characters, each",
                   {{"ours", [] { return pushBack<LightweightString<char>, char>(); }},
                    {"std::string", [] { return pushBack<std::string, char>(); }}},
                   {{{"std::string"}, 1.5}});
    const auto ours = equalTexts<LightweightString<wchar_t>>();
    const auto standard = equalTexts<std::wstring>();
    Bench::compare("compare of 200 equal wide characters",
                   {{"ours", [&] { return compareTexts(ours); }},
                    {"std::wstring", [&] { return compareTexts(standard); }}},
                   {{{"std::wstring"}, 1.0}});
}
