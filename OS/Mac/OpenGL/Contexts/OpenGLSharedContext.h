#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"

#include <OS/OpenGL/iOpenGLContext.h>

#include <QGLFormat>

class QGLWidget;

/// The context that every other one shares its objects with: a hidden widget's.
///
/// Made on the thread of the Qt application object, and used there.
class OpenGLSharedContext final : public iOpenGLContext
{
public:
    OpenGLSharedContext();
    ~OpenGLSharedContext() override;
    OpenGLSharedContext(const OpenGLSharedContext&) = delete;
    OpenGLSharedContext& operator=(const OpenGLSharedContext&) = delete;

    bool makeCurrent() override;
    bool unMakeCurrent() override;
    /// Not supported: prints the assertion report for "false" at "../Mac/OpenGLSharedContext line
    /// 32".
    void swapBuffers() override;

    /// Whether the driver gave a context.
    bool isValid() const;
    /// The widget to share with; null after shutdown().
    QGLWidget* getWidget() const;
    /// Releases the widget: contexts made before live on.
    void shutdown();

    /// What every GL widget of the library is made with: double buffer, RGBA, direct rendering; no
    /// depth and no stencil buffer, which would only cost time; frames are never held back for the
    /// screen.
    static QGLFormat getGLFormat();

private:
    Tq::Ptr<QGLWidget> widget_;
};
