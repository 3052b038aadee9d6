#pragma once

#include "Model/FrameRate.h"

namespace Vantor {

/// Which stretch of time the timeline shows: plain data.
struct TimeView
{
    static constexpr double kFinest = 24.0; ///< pixels for a frame
    static constexpr double kCoarsest = 0.02;

    double origin = 0.0; ///< the frame at the left edge of the lanes
    double scale = 1.6;  ///< pixels for a frame

    double xOf(double frame, int left) const { return left + (frame - origin) * scale; }
    double frameAt(double x, int left) const { return origin + (x - left) / scale; }

    /// Makes frames wider or narrower; the frame under the pointer stays under it.
    void zoomAround(double x, int left, double factor);
    /// Moves by pixels, not before the start.
    void scroll(double pixels);
    /// Scrolls as little as it takes to show a frame.
    void reveal(int frame, int width);
};

/// Frames between two labelled ticks of the ruler, and between two ticks without a label, such that
/// labels stand at least `minimumPixels` apart.
struct RulerStep
{
    int labelled;
    int plain;
};
RulerStep rulerStep(double scale, int minimumPixels, const FrameRate& rate);

} // namespace Vantor
