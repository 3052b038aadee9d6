#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Effects/iShaderEffectBase.h>
#include <OS/Effects/iShaderParamValue.h>

#include <vector>

/// How an image is passed through an effect: the effect, one of its techniques, and parameter
/// values, which hold for the one drawing. The image is put at the effect's first input; values may
/// put others at the further ones.
struct ShaderTechnique
{
    Tq::Ptr<iShaderEffectBase> effect_; ///< null draws the image as it is
    LightweightString<char> name_;      ///< "" is the effect's current technique
    std::vector<Tq::Ptr<iShaderParamValue>> values_;
};
