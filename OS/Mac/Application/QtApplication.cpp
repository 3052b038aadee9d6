#include "OS/Mac/Application/QtApplication.h"

#include <QApplication>

#include <clocale>

QtApplication* QtApplication::instance()
{
    static QtApplication* const companion = [] {
        auto* made = new QtApplication;
        // An application object that the client made has read the environment's locale too.
        if (made->starter_.start())
            std::setlocale(LC_NUMERIC, "C");
        return made;
    }();
    if (!QCoreApplication::instance())
        companion->starter_.start();
    return companion;
}

QCoreApplication* QtApplication::getApp() const
{
    return QCoreApplication::instance();
}

QThread* QtApplication::getAppThread() const
{
    QCoreApplication* application = getApp();
    return application ? application->thread() : nullptr;
}

bool QtApplication::hasGui() const
{
    return dynamic_cast<QGuiApplication*>(getApp()) != nullptr;
}

bool QtApplication::hasWidgets() const
{
    return dynamic_cast<QApplication*>(getApp()) != nullptr;
}
