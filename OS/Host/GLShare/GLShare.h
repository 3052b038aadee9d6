#pragma once

namespace Host {

/// The GL context that is current on the calling thread, by the names that other libraries know it
/// by, to share objects with it. Asked of the window system itself, so that contexts of every maker
/// are seen; the toolkit's own handles lack the display.
struct GLShare
{
    enum Kind
    {
        eNone,
        eGLX,
        eEGL
    };

    Kind kind = eNone;
    void* context = nullptr; ///< GLXContext or EGLContext
    void* display = nullptr; ///< Display* or EGLDisplay

    /// GLX is asked first. From any thread; no context current gives eNone.
    static GLShare current();
};

// Back ends: eNone where the thread has no context of this kind.
GLShare currentGLXShare();
GLShare currentEGLShare();

} // namespace Host
