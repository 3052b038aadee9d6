#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Whether control can come to the end of a statement, as far as can be seen without knowing
/// values: false after "return", and where all branches have one.
bool reachesEnd(const Statement& statement);

} // namespace EffectCompiler
