#include <OS/Core/LightweightString.h>

#include <QChar>

namespace Tq::detail {

// Unicode's simple mappings, from the toolkit's tables: the C library's depend on the locale.
wchar_t foldCase(wchar_t c)
{
    return static_cast<wchar_t>(QChar::toCaseFolded(static_cast<char32_t>(c)));
}

wchar_t upperCase(wchar_t c)
{
    return static_cast<wchar_t>(QChar::toUpper(static_cast<char32_t>(c)));
}

} // namespace Tq::detail
