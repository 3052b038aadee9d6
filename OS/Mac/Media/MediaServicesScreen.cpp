#include "OS/Mac/Media/MediaServices.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Media/CGImageWrapper.h"

#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QThread>

Tq::Ptr<iHostImage> MediaServices::grabScreen(XY<int>)
{
    const QtApplication* application = QtApplication::instance();
    const bool mayGrab =
        application->hasGui() && QThread::currentThread() == application->getAppThread();
    QScreen* screen = mayGrab ? QGuiApplication::primaryScreen() : nullptr;
    // The toolkit's other platforms have no screen, or do not let one program see another's
    // windows.
    const bool hasScreen = screen && QGuiApplication::platformName() == QLatin1String("xcb");
    const QImage image = hasScreen ? screen->grabWindow(0).toImage() : QImage();
    if (image.isNull()) {
        OSInternal::printLine("MediaServices::grabScreen() : %s\n",
                              mayGrab ? "the desktop does not let its screen be seen"
                                      : "not on the thread of the Qt application");
        return {};
    }
    return new CGImageWrapper(image.convertToFormat(QImage::Format_RGB32));
}
