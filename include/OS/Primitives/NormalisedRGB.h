#pragma once

#include <algorithm>

/// A colour: red, green, blue and alpha, nominally 0.0 to 1.0, not premultiplied. Opaque black by
/// default.
class NormalisedRGB
{
public:
    NormalisedRGB() = default;
    NormalisedRGB(float red_, float green_, float blue_, float alpha_ = 1.0f)
        : red(red_), green(green_), blue(blue_), alpha(alpha_)
    {
    }
    NormalisedRGB(const NormalisedRGB&) = default;
    NormalisedRGB& operator=(const NormalisedRGB&) = default;
    virtual ~NormalisedRGB() = default;

    /// A component as 8 bits: clamped, times 255, truncated. 1.0 gives 255 and 0.999 gives 254,
    /// deliberately. Not a number gives 0.
    static int toByte(float component)
    {
        if (!(component > 0.0f))
            return 0;
        return static_cast<int>(static_cast<double>(std::min(component, 1.0f)) * 255.0);
    }

    friend bool operator==(const NormalisedRGB& a, const NormalisedRGB& b)
    {
        return a.red == b.red && a.green == b.green && a.blue == b.blue && a.alpha == b.alpha;
    }

    float red = 0.0f;
    float green = 0.0f;
    float blue = 0.0f;
    float alpha = 1.0f;
};
