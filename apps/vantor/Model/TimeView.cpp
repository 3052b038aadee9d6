#include "Model/TimeView.h"

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

RulerStep rulerStep(double scale, int minimumPixels, const FrameRate& rate)
{
    const int second = rate.nominal();
    const RulerStep steps[] = {
        {5, 1},
        {second, second % 5 == 0 ? 5 : 6},
        {5 * second, second},
        {10 * second, 2 * second},
        {30 * second, 5 * second},
        {60 * second, 10 * second},
        {300 * second, 60 * second},
        {600 * second, 120 * second},
        {1800 * second, 300 * second},
        {3600 * second, 600 * second},
    };
    for (const RulerStep& step : steps)
        if (step.labelled * scale >= minimumPixels)
            return step;
    return {36000 * second, 3600 * second};
}

} // namespace Vantor
