#pragma once

#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/iGraphicPrimitive.h>

/// A filled rectangle: solid when both colours are equal in all four components, else a gradient
/// straight down from the top edge to the bottom edge.
class OS_API RectDescription : public iGraphicPrimitive
{
public:
    Tq::Rectangle<int> getBounds() const override;

    Tq::Rectangle<int> rect_;
    NormalisedRGB topColour_;
    NormalisedRGB bottomColour_;
};

/// Cuts a rectangle to another one, for renderers that clip on the processor.
///
/// @return whether anything with an area is left to draw. When the two lie apart the description's
///         rectangle becomes all zero; when they only touch it becomes the strip they share.
/// The colours are kept as they are.
OS_API bool clip(RectDescription& desc, const Tq::Rectangle<int>& clipRect);
