#include "Model/TimeView.h"

#include "Model/Timecode.h"

#include <algorithm>

namespace Vantor {

void TimeView::zoomAround(double x, int left, double factor)
{
    const double fixed = frameAt(x, left);
    scale = std::clamp(scale * factor, kCoarsest, kFinest);
    origin = std::max(fixed - (x - left) / scale, 0.0);
}

void TimeView::scroll(double pixels)
{
    origin = std::max(origin + pixels / scale, 0.0);
}

void TimeView::reveal(int frame, int width)
{
    const double shown = width / scale;
    if (frame < origin)
        origin = frame;
    else if (frame > origin + shown - 1)
        origin = std::max(frame - shown * 0.1, 0.0);
}

RulerStep rulerStep(double scale, int minimumPixels)
{
    constexpr int kSecond = Timecode::kFrameRate;
    static constexpr RulerStep kSteps[] = {
        {5, 1},
        {kSecond, 5},
        {5 * kSecond, kSecond},
        {10 * kSecond, 2 * kSecond},
        {30 * kSecond, 5 * kSecond},
        {60 * kSecond, 10 * kSecond},
        {300 * kSecond, 60 * kSecond},
        {600 * kSecond, 120 * kSecond},
        {1800 * kSecond, 300 * kSecond},
        {3600 * kSecond, 600 * kSecond},
    };
    for (const RulerStep& step : kSteps)
        if (step.labelled * scale >= minimumPixels)
            return step;
    return {36000 * kSecond, 3600 * kSecond};
}

} // namespace Vantor
