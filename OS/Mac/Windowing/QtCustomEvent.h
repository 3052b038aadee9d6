#pragma once

#include <QEvent>

/// The event that brings a user message to a window through the event loop. It carries nothing.
class QtCustomEvent final : public QEvent
{
public:
    QtCustomEvent() : QEvent(type()) {}

    /// The toolkit's number for this event, asked for once and kept. From any thread.
    static QEvent::Type type();
};
