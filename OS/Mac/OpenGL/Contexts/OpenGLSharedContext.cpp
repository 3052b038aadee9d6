#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"

#include "OS/Mac/Core/Assertion.h"

#include <QGLWidget>

OpenGLSharedContext::OpenGLSharedContext() : widget_(new QGLWidget(getGLFormat())) {}

OpenGLSharedContext::~OpenGLSharedContext() = default;

bool OpenGLSharedContext::makeCurrent()
{
    if (widget_)
        widget_->makeCurrent();
    return true;
}

bool OpenGLSharedContext::unMakeCurrent()
{
    if (widget_)
        widget_->doneCurrent();
    return true;
}

void OpenGLSharedContext::swapBuffers()
{
    OSInternal::reportAssertion("false", "../Mac/OpenGLSharedContext line 32");
}

bool OpenGLSharedContext::isValid() const
{
    return widget_ && widget_->isValid();
}

QGLWidget* OpenGLSharedContext::getWidget() const
{
    return widget_.get();
}

void OpenGLSharedContext::shutdown()
{
    widget_.reset();
}

QGLFormat OpenGLSharedContext::getGLFormat()
{
    QGLFormat format(QGL::DoubleBuffer | QGL::Rgba | QGL::DirectRendering);
    format.setDepth(false);
    format.setStencil(false);
    format.setSwapInterval(0);
    return format;
}
