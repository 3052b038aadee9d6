#pragma once

#include <OS/Core/LightweightString.h>

#include <string>
#include <string_view>

/// Between the compiler's strings and those of the interfaces.
namespace EffectText {

inline LightweightString<char> text(std::string_view from)
{
    return LightweightString<char>(from);
}
inline std::string standard(const LightweightString<char>& from)
{
    return std::string(from.view());
}
/// Compared without case; ASCII.
inline bool equalsNoCase(std::string_view a, std::string_view b)
{
    return LightweightString<char>(a).equalsNoCase(b);
}

} // namespace EffectText
