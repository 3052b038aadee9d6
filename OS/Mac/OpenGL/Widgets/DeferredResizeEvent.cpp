#include "OS/Mac/OpenGL/Widgets/DeferredResizeEvent.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"

DeferredResizeEvent::DeferredResizeEvent(QtGLWidget& widget, const QResizeEvent& event)
    : widget_(&widget), state_(widget.getState()), event_(event.size(), event.oldSize())
{
}

void DeferredResizeEvent::execute()
{
    if (state_->isAlive())
        widget_->resize(event_);
}
