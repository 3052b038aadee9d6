#include "OS/Host/GLShare/GLShare.h"

#define EGL_NO_X11
#include <EGL/egl.h>

namespace Host {

GLShare currentEGLShare()
{
    EGLContext context = eglGetCurrentContext();
    if (context == EGL_NO_CONTEXT)
        return {};
    return {GLShare::eEGL, context, eglGetCurrentDisplay()};
}

} // namespace Host
