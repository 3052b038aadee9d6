#include "OS/Host/EffectCompiler/Checker.h"

namespace EffectCompiler {

void check(SyntaxTree&, Messages&) {}

} // namespace EffectCompiler
