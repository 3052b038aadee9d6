#pragma once

#include <OS/Core/LightweightString.h>

#include <string>

namespace Vantor {

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

} // namespace Vantor
