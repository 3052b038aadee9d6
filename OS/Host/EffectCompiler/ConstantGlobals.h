#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Marks the globals whose initialiser is a constant expression in GLSL: literals, constructors,
/// operators, and names of what is marked already. GLSL initialises others at the start of main().
void markConstantGlobals(SyntaxTree& tree);

} // namespace EffectCompiler
