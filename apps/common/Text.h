#pragma once

#include <OS/Core/LightweightString.h>

#include <string>

namespace App {

/// The text of names, labels and fields: Unicode characters, cheap to copy.
using Text = LightweightString<wchar_t>;

/// A number in decimal digits, at least `digits` of them, zeros in front.
inline Text decimal(int value, unsigned int digits = 1)
{
    Text result;
    std::wstring number = std::to_wstring(value < 0 ? -static_cast<long>(value) : value);
    if (number.size() < digits)
        number.insert(0, digits - number.size(), L'0');
    return Text(value < 0 ? L"-" : L"") + number.c_str();
}

/// The part of a path behind the last separator.
inline Text nameOf(const Text& path)
{
    const Text::size_type slash = path.rfind(L'/');
    return slash == Text::npos ? path : path.substr(slash + 1);
}

} // namespace App
