#include "Drawing/Overlays.h"

#include "Model/Timecode.h"
#include "View/ViewerGeometry.h"

#include <algorithm>

namespace Vantor {

namespace {

constexpr float kPlate = 0.58f;

/// The corners of a frame only.
void washCorners(Canvas& canvas, const Rect& r, int length, const NormalisedRGB& colour,
                 float alpha)
{
    for (const int y : {r.top, r.bottom - 1}) {
        canvas.wash({r.left, y, r.left + length, y + 1}, colour, alpha);
        canvas.wash({r.right - length, y, r.right, y + 1}, colour, alpha);
    }
    for (const int x : {r.left, r.right - 1}) {
        canvas.wash({x, r.top + 1, x + 1, r.top + length}, colour, alpha);
        canvas.wash({x, r.bottom - length, x + 1, r.bottom - 1}, colour, alpha);
    }
}

void drawSafeAreas(Canvas& canvas, const Rect& picture, const OverlayPlaces& places)
{
    // A dark line beside each light one keeps it in sight on bright pictures.
    const int corner = std::max(4, picture.height() / 24);
    const int arm = std::max(4, picture.height() / 40);
    const Point middle = centreOf(picture);
    const auto draw = [&](int offset, const NormalisedRGB& colour, float alpha) {
        canvas.washFrame(inset(places.title, offset), colour, alpha);
        washCorners(canvas, inset(places.action, offset), corner, colour, alpha);
        const Point at{middle.x + offset, middle.y + offset};
        canvas.wash({at.x - arm, at.y, at.x + arm + 1, at.y + 1}, colour, alpha);
        canvas.wash({at.x, at.y - arm, at.x + 1, at.y}, colour, alpha);
        canvas.wash({at.x, at.y + 1, at.x + 1, at.y + arm + 1}, colour, alpha);
    };
    draw(1, Theme::kBlack, 0.28f);
    draw(0, Theme::kWhite, 0.5f);
}

} // namespace

void drawOverlays(Canvas& canvas, const Rect& picture, const Rect& screen,
                  const ViewerChoices& choices, int frame, const FrameRate& rate,
                  const WriteOn& write)
{
    const Text time = Timecode::full(frame, rate);
    const Text number = decimal(frame, 5);
    const OverlayPlaces places = placeOverlays(picture, screen, static_cast<int>(time.size()),
                                               static_cast<int>(number.size()));
    if (choices.safeAreas)
        drawSafeAreas(canvas, picture, places);
    if (choices.timeCode && places.timeCode.hasArea()) {
        canvas.wash(places.timeCode, Theme::kBlack, kPlate);
        write(time, places.timeCode, places.digit);
    }
    if (choices.frameNumber && places.frameNumber.hasArea()) {
        canvas.wash(places.frameNumber, Theme::kBlack, kPlate);
        write(number, places.frameNumber, places.digit);
    }
}

} // namespace Vantor
