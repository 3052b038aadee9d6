// Any text as an effect: read, parsed, checked, described and translated, or refused with reasons.
#include "OS/Host/EffectCompiler/DriverLog.h"
#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <cstdint>
#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(reinterpret_cast<const char*>(data), size);
    EffectCompiler::Context context;
    const auto effect =
        context.createFromText(text, "/nowhere/e.fx", {"-DPROFILE=glslf", "-I/nowhere"});
    if ((effect == nullptr) != (context.error() != EffectCompiler::Error::eNone) ||
        (!effect && context.listing().empty()))
        std::abort();
    if (effect) {
        std::string listing;
        for (std::size_t t = 0; t < effect->techniques().size(); ++t) {
            for (std::size_t p = 0; p < effect->techniques()[t].passes.size(); ++p) {
                for (const int version : {130, 120}) {
                    if (!effect->translate(t, p, version, listing) && listing.empty())
                        std::abort();
                }
            }
        }
    }
    EffectCompiler::Messages messages;
    messages.addFile("e.fx");
    EffectCompiler::addDriverLog(text, {}, messages);
    return 0;
}
