#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iImageBase.h>
#include <OS/Primitives/ShaderTechnique.h>
#include <OS/Primitives/iGraphicPrimitive.h>

/// A piece of an image passed through a shader effect. Drawn by GL only; the Qt renderer ignores
/// it.
class OS_API ImageDescriptionEx : public iGraphicPrimitive
{
public:
    /// Left, top, right and bottom in pixels, fractions included.
    struct Rect
    {
        float left = 0.0f;
        float top = 0.0f;
        float right = 0.0f;
        float bottom = 0.0f;
    };

    /// destRect_ widened to whole pixels.
    Tq::Rectangle<int> getBounds() const override;

    Tq::Ptr<iImageBase> image_;
    ShaderTechnique technique_;
    Rect sourceRect_; ///< in the image
    Rect destRect_;   ///< on the target
    bool blend_ = true;
};
