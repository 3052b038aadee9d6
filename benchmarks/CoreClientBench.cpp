// Core, measured from a client of the shared library.

#include "support/PointerRows.h"

#include <OS/Core/LightweightString.h>

#include <QString>

#include <string>

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

template <class Text>
double compareTexts(const Text& a, const Text& b)
{
    constexpr int kCount = 2'000'000;
    return timed(kCount, [&] {
        int sum = 0;
        for (int i = 0; i < kCount; ++i) {
            keep(a);
            keep(b);
            sum += a.compare(b);
        }
        keep(sum);
    });
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
    const LightweightString<wchar_t> a(200, L'x');
    const LightweightString<wchar_t> b = a.substr(0, 199) + L'x';
    const std::wstring c(200, L'x');
    const std::wstring d = c.substr(0, 199) + L'x';
    Bench::compare("compare of 200 equal wide characters",
                   {{"ours", [&] { return compareTexts(a, b); }},
                    {"std::wstring", [&] { return compareTexts(c, d); }}},
                   {{{"std::wstring"}, 1.0}});
}
