#pragma once

#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Gives each "sampler" without a dimension the one that it is used with, 2D where none tells.
/// Called once calls are resolved. Reports those used in two ways.
void inferSamplerKinds(SyntaxTree& tree, Messages& messages);

} // namespace EffectCompiler
