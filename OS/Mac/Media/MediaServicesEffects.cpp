// The operations of MediaServices that are about shader effects.
#include "OS/Mac/Media/MediaServices.h"

Tq::Ptr<iShaderEffect> MediaServices::createShaderEffect(const LightweightString<wchar_t>&)
{
    return {};
}

Tq::Ptr<iFXFile> MediaServices::compileFXFile(const LightweightString<wchar_t>&)
{
    return {};
}

Tq::Ptr<i3DEffect> MediaServices::create3DEffect()
{
    return {};
}
