#include "OS/Mac/OpenGL/Widgets/InputForwarder.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>

namespace {

void forward(QWidget& target, const QMouseEvent& event)
{
    const QPointF local = target.mapFromGlobal(event.globalPos());
    QMouseEvent sent(event.type(), local, target.window()->mapFromGlobal(event.globalPos()),
                     event.screenPos(), event.button(), event.buttons(), event.modifiers(),
                     event.source());
    sent.setTimestamp(event.timestamp());
    QCoreApplication::sendEvent(&target, &sent);
}

void forward(QWidget& target, const QWheelEvent& event)
{
    const QPointF local = target.mapFromGlobal(event.globalPosition().toPoint());
    QWheelEvent sent(local, event.globalPosition(), event.pixelDelta(), event.angleDelta(),
                     event.buttons(), event.modifiers(), event.phase(), event.inverted(),
                     event.source());
    sent.setTimestamp(event.timestamp());
    QCoreApplication::sendEvent(&target, &sent);
}

void forward(QWidget& target, const QKeyEvent& event)
{
    QKeyEvent sent(event.type(), event.key(), event.modifiers(), event.nativeScanCode(),
                   event.nativeVirtualKey(), event.nativeModifiers(), event.text(),
                   event.isAutoRepeat(), static_cast<ushort>(event.count()));
    sent.setTimestamp(event.timestamp());
    QCoreApplication::sendEvent(&target, &sent);
}

} // namespace

bool InputForwarder::eventFilter(QObject* watched, QEvent* event)
{
    switch (event->type()) {
    case QEvent::MouseMove:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonRelease:
    case QEvent::MouseButtonDblClick:
        if (target_) {
            auto* widget = static_cast<QWidget*>(watched);
            if (widget->cursor() != target_->cursor())
                widget->setCursor(target_->cursor());
            forward(*target_, *static_cast<QMouseEvent*>(event));
        }
        return true;
    case QEvent::Wheel:
        if (target_)
            forward(*target_, *static_cast<QWheelEvent*>(event));
        return true;
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        if (target_)
            forward(*target_, *static_cast<QKeyEvent*>(event));
        return true;
    case QEvent::Close: // by the window manager: only the application closes it
        event->ignore();
        return true;
    default:
        return QObject::eventFilter(watched, event);
    }
}
