#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLRenderContext.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <OS/Threads/CriticalSectionLock.h>

#include <QGLContext>
#include <QGLWidget>
#include <cstdint>

OpenGLRenderContext::OpenGLRenderContext(const QSurfaceFormat& format)
{
    const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
    surface_.setFormat(format);
    surface_.create();
    if (QGLWidget* shared = OpenGLUtils::getSharedContext().getWidget())
        context_.setShareContext(shared->context()->contextHandle());
    context_.setFormat(format);
    if (!context_.create()) {
        OSInternal::printLine(
            "OpenGLRenderContext::OpenGLRenderContext() : QOpenGLContext::create failed\n");
        return;
    }
    const OpenGLContextProtector protector(*this);
    initialiseState();
}

void OpenGLRenderContext::initialiseState()
{
    for (std::uint16_t unit = 0; unit < OpenGLUtils::getNumTextureUnits(); ++unit) {
        glActiveTexture(GL_TEXTURE0 + unit);
        glEnable(GL_TEXTURE_2D);
        glDisable(GL_LIGHTING);
        glDisable(GL_DEPTH_TEST);
        glDisable(GL_STENCIL_TEST);
        glDisable(GL_COLOR_MATERIAL);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
        glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    }
    glActiveTexture(GL_TEXTURE0);
}

bool OpenGLRenderContext::makeCurrent()
{
    if (context_.isValid())
        context_.makeCurrent(&surface_);
    return true;
}

bool OpenGLRenderContext::unMakeCurrent()
{
    if (context_.isValid())
        context_.doneCurrent();
    return true;
}

void OpenGLRenderContext::swapBuffers()
{
    OSInternal::reportAssertion("false", "../Mac/OpenGLRenderContext line 34");
}
