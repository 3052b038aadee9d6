#include "OS/Mac/Windowing/QtCustomEvent.h"

QEvent::Type QtCustomEvent::type()
{
    static const auto registered = static_cast<QEvent::Type>(QEvent::registerEventType());
    return registered;
}
