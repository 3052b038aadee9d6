#include "OS/Host/GLShare/GLShare.h"

namespace Host {

GLShare GLShare::current()
{
    const GLShare glx = currentGLXShare();
    return glx.kind != eNone ? glx : currentEGLShare();
}

} // namespace Host
