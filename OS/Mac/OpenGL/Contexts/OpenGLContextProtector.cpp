#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLRenderContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <QOpenGLContext>

OpenGLContextProtector::OpenGLContextProtector(iOpenGLContext& context)
    : context_(&context), locked_(OpenGLUtils::isInitialised())
{
    if (locked_)
        OpenGLUtils::instance().getLock()->lock();
    context.makeCurrent();
}

OpenGLContextProtector::OpenGLContextProtector() : locked_(OpenGLUtils::isInitialised())
{
    if (!locked_)
        return;
    OpenGLUtils::instance().getLock()->lock();
    if (hasContext())
        return;
    context_ = &OpenGLUtils::instance().getRenderContext();
    context_->makeCurrent();
}

OpenGLContextProtector::~OpenGLContextProtector()
{
    if (context_)
        context_->unMakeCurrent();
    if (locked_)
        OpenGLUtils::instance().getLock()->unlock();
}

bool OpenGLContextProtector::hasContext()
{
    return QOpenGLContext::currentContext() != nullptr;
}
