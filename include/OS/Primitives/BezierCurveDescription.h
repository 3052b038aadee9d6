#pragma once

#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/iGraphicPrimitive.h>

#include <cstdint>

/// A cubic Bezier curve, stroked and never filled.
class OS_API BezierCurveDescription : public iGraphicPrimitive
{
public:
    /// The smallest rectangle around all four points.
    Tq::Rectangle<int> getBounds() const override;

    XY<int> start_;
    XY<int> end_;
    XY<int> control1_; ///< nearer start_
    XY<int> control2_; ///< nearer end_
    NormalisedRGB colour_;
    std::int32_t lineWidth_ = 1; ///< pixels
};
