#pragma once

#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/iGraphicPrimitive.h>

#include <cstdint>

/// A straight line. Renderers draw it one pixel above its nominal y, deliberately.
class OS_API LineDescription : public iGraphicPrimitive
{
public:
    enum eLineStyle : std::int32_t
    {
        eSolid = 0,
        eDotted = 1
    };

    Tq::Rectangle<int> getBounds() const override;

    XY<int> start_;
    XY<int> end_;
    NormalisedRGB colour_;
    NormalisedRGB colour2_;           ///< carried, drawn by no renderer
    std::int32_t lineStyle_ = eSolid; ///< 1 is dotted, everything else solid
    std::int32_t lineReserved_ = 0;   ///< carried, read by no renderer
    std::int32_t lineWidth_ = 1;      ///< pixels; dotted lines ignore it
};
