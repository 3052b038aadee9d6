#pragma once

#include <OS/Effects/iShaderEffectBase.h>

/// An effect that knows no technique: nothing is drawn with it.
class UnknowingEffect final : public iShaderEffectBase
{
public:
    using Name = LightweightString<char>;
    bool setTechnique(const Name&) override { return false; }
    bool setTechnique(unsigned int) override { return false; }
    bool hasTechnique(const Name&) override { return false; }
    bool setFloat(const Name&, float) override { return false; }
    bool setInt(const Name&, int) override { return false; }
    bool setColour(const Name&, const NormalisedRGB&) override { return false; }
    bool draw(const Drawing&) override { return false; }
};
