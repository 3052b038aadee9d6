// The operations of MediaServices that are about shader effects.
#include "OS/Mac/Media/MediaServices.h"

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Mac/Effects/FXFile.h"
#include "OS/Mac/Effects/OpenGL3DEffect.h"
#include "OS/Mac/Effects/OpenGLShaderEffect.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

namespace {

bool canUseGPU()
{
    OpenGLUtils::instance();
    return OpenGLUtils::isInitialised();
}

} // namespace

Tq::Ptr<iShaderEffect> MediaServices::createShaderEffect(const LightweightString<wchar_t>& path)
{
    if (!canUseGPU())
        return {};
    EffectCompiler::Context context;
    return OpenGLShaderEffect::load(&context, "glslf", path).effect;
}

Tq::Ptr<iFXFile> MediaServices::compileFXFile(const LightweightString<wchar_t>& path)
{
    return new FXFile(path);
}

Tq::Ptr<i3DEffect> MediaServices::create3DEffect()
{
    if (!canUseGPU())
        return {};
    return new OpenGL3DEffect;
}
