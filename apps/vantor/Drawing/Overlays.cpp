#include "Drawing/Overlays.h"

#include "Model/Timecode.h"
#include "View/ViewerGeometry.h"

#include <algorithm>

namespace Vantor {

namespace {

constexpr float kPlate = 0.58f;

/// The corners of a frame only.
void washCorners(Canvas& canvas, const Rect& r, int length, float alpha)
{
    for (const int y : {r.top, r.bottom - 1}) {
        canvas.wash({r.left, y, r.left + length, y + 1}, Theme::kWhite, alpha);
        canvas.wash({r.right - length, y, r.right, y + 1}, Theme::kWhite, alpha);
    }
    for (const int x : {r.left, r.right - 1}) {
        canvas.wash({x, r.top + 1, x + 1, r.top + length}, Theme::kWhite, alpha);
        canvas.wash({x, r.bottom - length, x + 1, r.bottom - 1}, Theme::kWhite, alpha);
    }
}

void drawSafeAreas(Canvas& canvas, const Rect& picture, const OverlayPlaces& places)
{
    canvas.washFrame(places.title, Theme::kWhite, 0.4f);
    washCorners(canvas, places.action, std::max(4, picture.height() / 24), 0.4f);
    const Point middle = centreOf(picture);
    const int arm = std::max(4, picture.height() / 40);
    canvas.wash({middle.x - arm, middle.y, middle.x + arm + 1, middle.y + 1}, Theme::kWhite, 0.4f);
    canvas.wash({middle.x, middle.y - arm, middle.x + 1, middle.y}, Theme::kWhite, 0.4f);
    canvas.wash({middle.x, middle.y + 1, middle.x + 1, middle.y + arm + 1}, Theme::kWhite, 0.4f);
}

} // namespace

void drawOverlays(Canvas& canvas, const Rect& picture, const ViewerChoices& choices, int frame,
                  const FrameRate& rate, const WriteOn& write)
{
    const Text time = Timecode::full(frame, rate);
    const Text number = decimal(frame, 5);
    const OverlayPlaces places =
        placeOverlays(picture, static_cast<int>(time.size()), static_cast<int>(number.size()));
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
