#pragma once

#include <OS/Core/Ptr.h>

#include <QEvent>
#include <QWidget>
#include <vector>

/// Carries sub-windows out of a paint: they go when the event has been delivered, or when it is
/// dropped with the window that it was posted to.
class DeferredWindowDestructionEvent final : public QEvent
{
public:
    explicit DeferredWindowDestructionEvent(std::vector<Tq::Ptr<QWidget>> windows);

    static QEvent::Type type();

private:
    std::vector<Tq::Ptr<QWidget>> windows_;
};
