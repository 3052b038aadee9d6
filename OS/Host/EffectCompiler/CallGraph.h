#pragma once

#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Completes what only all functions together tell: who calls whom, which functions and expressions
/// have effects, which objects methods write to. Reports recursion.
void completeCalls(SyntaxTree& tree, Messages& messages);

/// The functions that a call may reach: itself, or of an interface's method all that implement it.
std::vector<const Function*> targetsOf(const SyntaxTree& tree, const Function& function);

} // namespace EffectCompiler
