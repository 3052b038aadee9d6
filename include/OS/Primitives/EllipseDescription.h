#pragma once

#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/iGraphicPrimitive.h>

#include <cstdint>

/// An ellipse, or a pie (filled) and an arc (outlined) of one. The outline stays inside the box.
class OS_API EllipseDescription : public iGraphicPrimitive
{
public:
    enum eFillStyle : std::int32_t
    {
        eFill = 0,
        eOutline = 1,
        eFillAndOutline = 2
    };

    Tq::Rectangle<int> getBounds() const override;

    Tq::Rectangle<int> rect_;
    std::int32_t fillStyle_ = eFill; ///< other values draw nothing
    NormalisedRGB fillColour_;
    NormalisedRGB lineColour_;
    std::uint16_t lineWidth_ = 1; ///< pixels
    std::int16_t startAngle_ = 0; ///< degrees, clockwise from three o'clock
    std::int16_t endAngle_ = 360; ///< degrees; exactly 0 and 360 are the whole ellipse
};
