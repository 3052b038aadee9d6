#include "common/WindowPlace.h"

#include "common/StoredValues.h"

#include <algorithm>

namespace App {

namespace {

constexpr const char* kSection = "Window";
constexpr int kFarthest = 100000;
const Point kFirstPosition{80, 60};

} // namespace

WindowPlace readPlace(const Tq::Ptr<iSettings>& settings, const WindowPlace& fallback,
                      const Point& smallest, const Point& largest)
{
    const StoredValues values(settings, kSection);
    WindowPlace place;
    place.size.x = values.integer("Width", fallback.size.x, smallest.x, largest.x);
    place.size.y = values.integer("Height", fallback.size.y, smallest.y, largest.y);
    place.position.x = values.integer("Left", fallback.position.x, -kFarthest, kFarthest);
    place.position.y = values.integer("Top", fallback.position.y, -kFarthest, kFarthest);
    place.maximised = values.flag("Maximised", fallback.maximised);
    place.fullScreen = values.flag("FullScreen", fallback.fullScreen);
    return place;
}

void writePlace(const Tq::Ptr<iSettings>& settings, const WindowPlace& place)
{
    StoredValues values(settings, kSection);
    values.setInteger("Width", place.size.x);
    values.setInteger("Height", place.size.y);
    values.setInteger("Left", place.position.x);
    values.setInteger("Top", place.position.y);
    values.setFlag("Maximised", place.maximised);
    values.setFlag("FullScreen", place.fullScreen);
}

void realizeAt(iRootWindow& window, iRootWindow::InitArgs args, const WindowPlace& place)
{
    args.size = place.size;
    args.position = window.validDesktopPosition(place.position) ? place.position : kFirstPosition;
    args.maximised = place.maximised;
    args.titleBar = true;
    window.realize(args);
    if (place.fullScreen)
        window.enableTitleBar(false);
}

WindowPlace placeOf(const iRootWindow& window, const WindowPlace& before)
{
    WindowPlace place = before;
    if (window.isMinimised())
        return place;
    place.fullScreen = !window.isTitleBarEnabled();
    place.maximised = place.fullScreen ? before.maximised : window.isMaximised();
    if (place.fullScreen || place.maximised)
        return place;
    const Point size = window.getSize();
    if (size.x > 0 && size.y > 0) {
        place.size = size;
        place.position = window.getPosition();
    }
    return place;
}

} // namespace App
