#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iImageBase.h>
#include <OS/Primitives/iGraphicPrimitive.h>

/// A piece of an image. A null or an empty image draws nothing.
class OS_API ImageDescription : public iGraphicPrimitive
{
public:
    Tq::Rectangle<int> getBounds() const override;

    Tq::Ptr<iImageBase> image_;
    Tq::Rectangle<int> destROI_;   ///< pixels of the target
    Tq::Rectangle<int> sourceROI_; ///< logical pixels of the image; the Qt renderer never scales
    bool blend_ = true;            ///< over what is there; false replaces it
    float opacity_ = 1.0f;         ///< 0.0 to 1.0, of the whole image
};
