#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Effects/iShaderEffectBase.h>
#include <OS/Effects/iShaderParamValue.h>

#include <vector>

/// How an image is passed through an effect: the effect, one of its techniques, and parameter
/// values.
struct ShaderTechnique
{
    Tq::Ptr<iShaderEffectBase> effect_; ///< null draws the image as it is
    LightweightString<char> name_;
    std::vector<Tq::Ptr<iShaderParamValue>> values_;
};
