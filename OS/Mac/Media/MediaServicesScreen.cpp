// Pictures of the screen.
#include "OS/Mac/Media/MediaServices.h"

#include "OS/Host/Screen/DisplayProbe.h"
#include "OS/Host/Screen/ScreenGrabber.h"
#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Media/CGImageWrapper.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QThread>
#include <cmath>

namespace {

// The toolkit's other platforms have no screen, or do not let one program see another's windows.
bool screenCanBeSeen()
{
    return QGuiApplication::platformName() == QLatin1String("xcb") && !Host::desktopHidesScreen();
}

// Where a screen lies among others, in its own pixels: the toolkit scales the size alone.
Host::ScreenArea areaOf(const QScreen& screen)
{
    const QRect geometry = screen.geometry();
    const auto pixels = [&](int length) {
        return static_cast<int>(std::lround(length * screen.devicePixelRatio()));
    };
    return {geometry.x(), geometry.y(), pixels(geometry.width()), pixels(geometry.height())};
}

void letGo(void* owner)
{
    delete static_cast<std::shared_ptr<const void>*>(owner);
}

// The picture as it lies in the shared memory, which it keeps.
QImage wrap(const Host::ScreenPicture& picture)
{
    auto* owner = new std::shared_ptr<const void>(picture.owner);
    return QImage(picture.pixels, picture.width, picture.height, picture.stride,
                  QImage::Format_RGB32, &letGo, owner);
}

QImage grab(Host::ScreenGrabber& grabber, QScreen& screen)
{
    const Host::ScreenArea area = areaOf(screen);
    const bool only = QGuiApplication::screens().size() == 1;
    const Host::ScreenPicture picture = grabber.grab(only ? nullptr : &area);
    if (picture.owner)
        return wrap(picture);
    return screen.grabWindow(0).toImage().convertToFormat(QImage::Format_RGB32);
}

} // namespace

// Lives as long as the process: pictures of the screen may.
Host::ScreenGrabber& MediaServices::screenGrabber()
{
    static auto* const grabber = new Host::ScreenGrabber;
    return *grabber;
}

Tq::Ptr<iHostImage> MediaServices::grabScreen(XY<int>)
{
    const QtApplication* application = QtApplication::instance();
    const bool mayGrab =
        application->hasGui() && QThread::currentThread() == application->getAppThread();
    QScreen* screen = mayGrab ? QGuiApplication::primaryScreen() : nullptr;
    const QImage image = screen && screenCanBeSeen() ? grab(screenGrabber(), *screen) : QImage();
    if (image.isNull()) {
        OSInternal::printLine("MediaServices::grabScreen() : %s\n",
                              mayGrab ? "the desktop does not let its screen be seen"
                                      : "not on the thread of the Qt application");
        return {};
    }
    return new CGImageWrapper(image);
}
