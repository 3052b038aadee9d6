#include "common/ScreenGrab.h"

#include "common/PictureFile.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Threads/iThreadManager.h>
#include <OS/Windowing/iWindowManager.h>

#include <cmath>
#include <cstring>

namespace App {

namespace {

constexpr double kLongestMs = 20000.0;
constexpr double kSettleMs = 400.0; ///< for the window system to put on the screen what was drawn

void runFor(double ms, const std::function<bool()>& enough)
{
    const double end = OS()->utils()->timeNow() + ms;
    while (!enough() && OS()->utils()->timeNow() < end) {
        OS()->windowMgr()->despatchPendingEvents();
        OS()->threadMgr()->sleep(5);
    }
}

/// The top left part of the screen, of a logical size.
Tq::Ptr<iHostImage> screenPart(const Point& size, const Point& monitor)
{
    const Tq::Ptr<iHostImage> screen = OS()->mediaServices()->grabScreen({});
    if (!screen || monitor.x <= 0)
        return nullptr;
    const double ratio = static_cast<double>(screen->getSize().x) / monitor.x;
    const Point pixels{static_cast<int>(std::lround(size.x * ratio)),
                       static_cast<int>(std::lround(size.y * ratio))};
    const Tq::Ptr<iHostImage> part = OS()->mediaServices()->createHostSurface(pixels);
    if (!part || pixels.x > screen->getSize().x || pixels.y > screen->getSize().y)
        return nullptr;
    const Tq::Ptr<iPixelGuard> from = screen->lock();
    const Tq::Ptr<iPixelGuard> to = part->lock();
    for (int y = 0; y < pixels.y; ++y)
        std::memcpy(to->getPixels() + static_cast<std::ptrdiff_t>(y) * to->getStride(),
                    from->getPixels() + static_cast<std::ptrdiff_t>(y) * from->getStride(),
                    static_cast<std::size_t>(pixels.x) * 4);
    return part;
}

} // namespace

Text grabWindow(const Point& size, const Tq::Ptr<iEventHandler>& handler,
                const std::function<void(const Tq::Ptr<iRootWindow>&)>& attach,
                const std::function<bool()>& drawn, const std::function<void()>& detach,
                const Text& path)
{
    iWindowManager* manager = OS()->windowMgr();
    Tq::Ptr<iRootWindow> window = manager->createRootWindow();
    if (!window)
        return L"no window could be made";
    iRootWindow::InitArgs args;
    args.size = size;
    args.titleBar = false;
    args.stayOnTop = true;
    args.eventHandler = handler;
    window->realize(args);
    args.eventHandler.reset();
    attach(window);
    runFor(kSettleMs, [] { return false; });
    runFor(kLongestMs, drawn);
    runFor(kSettleMs, [] { return false; });
    const Tq::Ptr<iHostImage> picture = screenPart(size, window->getMonitorSize({0, 0}));
    detach();
    window->setEventHandler(nullptr);
    window.reset();
    const Text failure =
        picture ? savePicture(picture, path) : Text(L"the screen cannot be seen, or is too small");
    manager->shutdown();
    return failure;
}

} // namespace App
