#include <OS/Files/PathFunctions.h>

#include <algorithm>
#include <iterator>

namespace {

bool sameIgnoringCase(wchar_t a, wchar_t b)
{
    return Tq::detail::foldCase(a) == Tq::detail::foldCase(b);
}

// Just behind the last "." of a range, or its end when there is none.
const wchar_t* behindLastDot(const wchar_t* first, const wchar_t* last)
{
    const auto dot = std::find(std::reverse_iterator(last), std::reverse_iterator(first), L'.');
    return dot == std::reverse_iterator(first) ? last : dot.base();
}

} // namespace

bool isWildcard(wchar_t c)
{
    return c == L'?' || c == L'*';
}

bool matchingFile(const LightweightString<wchar_t>& name, const LightweightString<wchar_t>& pattern)
{
    const wchar_t* n = name.begin();
    const wchar_t* p = pattern.begin();
    while (p != pattern.end()) {
        if (n == name.end())
            return false;
        if (*p != L'*') {
            if (*p != L'?' && !sameIgnoringCase(*p, *n))
                return false;
            ++p;
            ++n;
            continue;
        }
        p = std::find_if_not(p, pattern.end(), isWildcard);
        if (p == pattern.end())
            return true;
        if (*p == L'.') {
            p = std::find_if(p, pattern.end(), [](wchar_t c) { return c != L'.'; });
            n = behindLastDot(n, name.end());
        } else {
            n = std::find(n, name.end(), *p);
        }
    }
    return n == name.end();
}
