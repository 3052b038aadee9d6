#include "OS/Host/EffectCompiler/Translator.h"

namespace EffectCompiler {

std::optional<ProgramText> translate(const SyntaxTree&, const PassSyntax& pass, int,
                                     Messages& messages)
{
    messages.error(pass.place, "this pass cannot be translated");
    return {};
}

} // namespace EffectCompiler
