#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>

namespace EffectCompiler {

/// Writes the programs of a pass as GLSL. "#line N K" in them refers to line N of the file K of
/// the effect's Messages.
/// @param tree checked, without errors
/// @param version 130 or 120
/// @return nothing when it cannot be expressed, with the reasons in messages
std::optional<ProgramText> translate(const SyntaxTree& tree, const PassSyntax& pass, int version,
                                     Messages& messages);

} // namespace EffectCompiler
