#include "View/ViewerGeometry.h"

#include <algorithm>
#include <cmath>

namespace Vantor {

namespace {

constexpr int kSmallestDigit = 9;
constexpr int kLargestDigit = 44;
constexpr double kTitleSafe = 0.05;

/// Logical pixels of the picture at a fixed zoom.
Point sizeAt(ViewerZoom zoom, double ratio)
{
    const double factor = zoom == ViewerZoom::eHalf ? 0.5 : zoom == ViewerZoom::eDouble ? 2.0 : 1.0;
    return {static_cast<int>(std::lround(kSequenceSize.x * factor / ratio)),
            static_cast<int>(std::lround(kSequenceSize.y * factor / ratio))};
}

Rect aroundCentre(const Rect& room, const Point& size)
{
    const int left = room.left + (room.width() - size.x) / 2;
    const int top = room.top + (room.height() - size.y) / 2;
    return {left, top, left + size.x, top + size.y};
}

Rect insetBy(const Rect& r, double part)
{
    const auto x = static_cast<int>(std::lround(r.width() * part));
    const auto y = static_cast<int>(std::lround(r.height() * part));
    return {r.left + x, r.top + y, r.right - x, r.bottom - y};
}

/// A plate for digits that are 0.6 times as wide as high.
Point plateSize(int letters, int digit)
{
    return {digit * 6 / 10 * letters + digit, digit * 3 / 2};
}

} // namespace

Point soundShift(const Rect& screen, double ratio, const ViewerChoices& choices)
{
    if (choices.zoom == ViewerZoom::eFit)
        return {};
    const Point size = sizeAt(choices.zoom, ratio);
    const int x = std::max(0, (size.x - screen.width() + 1) / 2);
    const int y = std::max(0, (size.y - screen.height() + 1) / 2);
    return {std::clamp(choices.shift.x, -x, x), std::clamp(choices.shift.y, -y, y)};
}

Rect placePicture(const Rect& screen, const Rect& stage, double ratio, const ViewerChoices& choices)
{
    if (choices.zoom == ViewerZoom::eFit) {
        const int width = std::min(stage.width(), stage.height() * 16 / 9);
        return aroundCentre(stage, {width, std::min(stage.height(), width * 9 / 16)});
    }
    const Rect middle = aroundCentre(screen, sizeAt(choices.zoom, ratio));
    const Point shift = soundShift(screen, ratio, choices);
    return {middle.left + shift.x, middle.top + shift.y, middle.right + shift.x,
            middle.bottom + shift.y};
}

int zoomPercent(int width, double ratio)
{
    return static_cast<int>(std::lround(100.0 * width * ratio / kSequenceSize.x));
}

OverlayPlaces placeOverlays(const Rect& picture, const Rect& screen, int timeCodeLetters,
                            int frameNumberLetters)
{
    OverlayPlaces places;
    places.action = insetBy(picture, 0.035);
    places.title = insetBy(picture, kTitleSafe);
    const Rect seen = picture.intersection(screen);
    const Rect room = insetBy(seen, kTitleSafe);
    places.digit = std::clamp(seen.height() / 20, kSmallestDigit, kLargestDigit);
    const int gap = places.digit / 2;
    const Point time = plateSize(timeCodeLetters, places.digit);
    const Point number = plateSize(frameNumberLetters, places.digit);
    const int left = (seen.left + seen.right - time.x) / 2;
    const int bottom = room.bottom - gap;
    if (time.x + 2 * gap <= room.width() && 5 * time.y <= seen.height()) {
        places.timeCode = {left, bottom - time.y, left + time.x, bottom};
        const int right = room.right - gap;
        const int top = room.top + gap;
        places.frameNumber = {right - number.x, top, right, top + number.y};
    }
    return places;
}

} // namespace Vantor
