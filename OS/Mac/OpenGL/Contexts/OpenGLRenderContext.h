#pragma once

#include <OS/OpenGL/iOpenGLContext.h>

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QSurfaceFormat>

/// A context without a window, for GL work of one thread away from the display widgets.
///
/// Belongs to the thread that made it, and is never destroyed there
/// (OpenGLUtils::getRenderContext).
class OpenGLRenderContext final : public iOpenGLContext
{
public:
    /// Under the GL lock, which it takes. A context that the driver refuses prints
    /// "OpenGLRenderContext::OpenGLRenderContext() : QOpenGLContext::create failed\n", and GL calls
    /// made with it do nothing.
    explicit OpenGLRenderContext(const QSurfaceFormat& format = QSurfaceFormat());
    ~OpenGLRenderContext() override = default;
    OpenGLRenderContext(const OpenGLRenderContext&) = delete;
    OpenGLRenderContext& operator=(const OpenGLRenderContext&) = delete;

    bool makeCurrent() override;
    bool unMakeCurrent() override;
    /// Not supported: prints the assertion report for "false" at "../Mac/OpenGLRenderContext line
    /// 34".
    void swapBuffers() override;

private:
    void initialiseState();

    QOpenGLContext context_;
    QOffscreenSurface surface_; // goes before the context
};
