#include "OS/Mac/Windowing/EventPump.h"

#include <QAbstractEventDispatcher>
#include <QCoreApplication>

void processEventsExceptInput(int longestMs)
{
    if (longestMs > 0)
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, longestMs);
    else
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
    // The toolkit has set the input aside, and would look at it with the window system's next event
    // only.
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
        dispatcher->wakeUp();
}
