#pragma once

#include <string>
#include <string_view>

namespace EffectCompiler {

/// A function in GLSL for what GLSL has none for, called "fx_" and its name.
/// @param type what it works on, in GLSL: "vec3"; ignored where there is but one
/// @param version 130 or 120
/// @return its definition, or an empty text where there is no such helper
std::string helperText(std::string_view name, std::string_view type, int version);

/// Whether there is one for each type.
bool isHelperGeneric(std::string_view name);

} // namespace EffectCompiler
