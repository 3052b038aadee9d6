#pragma once

#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Finds what every name means and the type of every expression, in all functions whether used or
/// not, and reports what does not fit. Called once, on a tree without syntax errors.
void check(SyntaxTree& tree, Messages& messages);

/// Whether a parameter of an entry function is given in the pass, not for each vertex or pixel.
bool takesArgument(const Variable& parameter);

} // namespace EffectCompiler
