#pragma once

class iOpenGLContext;

/// Holds the GL lock, with a context current, for the life of a scope.
///
/// Before OpenGLUtils is built no lock is taken. An exception from the clean-up ends the process.
class [[nodiscard]] OpenGLContextProtector
{
public:
    /// Makes a context current, whatever was current before.
    explicit OpenGLContextProtector(iOpenGLContext& context);
    /// Makes the thread's render context current, but only where no context is: a thread that has
    /// one current keeps it, deliberately. Before OpenGLUtils is built it does nothing at all.
    OpenGLContextProtector();
    virtual ~OpenGLContextProtector();
    OpenGLContextProtector(const OpenGLContextProtector&) = delete;
    OpenGLContextProtector& operator=(const OpenGLContextProtector&) = delete;

    /// Whether a context is current on the calling thread: GL may be called. The driver may have
    /// refused one.
    static bool hasContext();

private:
    iOpenGLContext* context_ = nullptr;
    bool locked_ = false;
};
