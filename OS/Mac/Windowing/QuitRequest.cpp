#include "OS/Mac/Windowing/QuitRequest.h"

#include <QApplication>
#include <utility>

namespace {

bool made = false;
bool closingWindows = false;

void closeWindows()
{
    if (!std::exchange(closingWindows, true)) {
        QApplication::closeAllWindows();
        closingWindows = false;
    }
}

} // namespace

void QuitRequest::make()
{
    if (std::exchange(made, true))
        return;
    QMetaObject::invokeMethod(
        QCoreApplication::instance(),
        [] {
            if (made) {
                closeWindows();
                QCoreApplication::exit(0);
            }
        },
        Qt::QueuedConnection);
}

bool QuitRequest::isMade()
{
    return made;
}

bool QuitRequest::isClosingWindows()
{
    return closingWindows;
}

void QuitRequest::finish()
{
    if (made)
        closeWindows();
    made = false;
}
