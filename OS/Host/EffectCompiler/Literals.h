#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>
#include <string>
#include <string_view>

namespace EffectCompiler {

struct NumberLiteral
{
    double value = 0.0;
    Type type; ///< int, uint or float
};

/// What a number says, whatever the locale: 1 0x1F 2u are whole, 1. .5 1e3 0.5h 2f are float.
/// @return nothing for what is no number, or out of range
std::optional<NumberLiteral> parseNumber(std::string_view text);

/// A string's text without its quotes, its escapes undone: \n \t \r \" \\ \0 \xNN and octal ones.
/// Of others the backslash goes.
std::string parseString(std::string_view quoted);

/// The built-in types by name: "float4x3", "half", "sampler2D". Textures, samplers and strings
/// without regard to case.
std::optional<Type> builtInType(std::string_view name);

/// Whether two names differ in the case of Latin letters at most.
bool isSameName(std::string_view a, std::string_view b);

} // namespace EffectCompiler
