#pragma once

#include <OS/Primitives/RectDescription.h>

#include <cstdint>

/// A flat, translucent rectangle.
///
/// Drawn in topColour_'s red, green and blue with alpha_ as its opacity; bottomColour_ is ignored:
/// never a gradient, deliberately.
class OS_API AlphaRectDescription : public RectDescription
{
public:
    enum eBlendMode : std::int32_t
    {
        eBlendOver = 0, ///< over what is there
        eBlendCopy =
            1, ///< replaces what is there, alpha included (a renderer for GL always blends)
        eBlendOverToo = 2 ///< like 0; any other value leaves the renderer's blending as it was
    };

    std::int32_t blendMode_ = eBlendOver;
    float alpha_ = 1.0f; ///< 0.0 to 1.0
};
