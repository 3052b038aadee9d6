#pragma once

#include <OS/Core/iObject.h>

/// A GL context that can be made current. Every use happens under the GL lock.
class OS_API iOpenGLContext : public virtual iObject
{
public:
    ~iOpenGLContext() override = default;

    /// Makes it current on the calling thread. @return true
    virtual bool makeCurrent() = 0;
    /// Releases it from the calling thread. @return true
    virtual bool unMakeCurrent() = 0;
    /// Shows what was drawn, where the context has something to show.
    virtual void swapBuffers() = 0;
};
