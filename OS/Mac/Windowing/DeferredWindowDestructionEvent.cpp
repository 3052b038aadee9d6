#include "OS/Mac/Windowing/DeferredWindowDestructionEvent.h"

#include <utility>

DeferredWindowDestructionEvent::DeferredWindowDestructionEvent(
    std::vector<Tq::Ptr<QWidget>> windows)
    : QEvent(type()), windows_(std::move(windows))
{
}

QEvent::Type DeferredWindowDestructionEvent::type()
{
    static const auto registered = static_cast<QEvent::Type>(QEvent::registerEventType());
    return registered;
}
