#include "OS/Host/GLShare/GLShare.h"

#include <GL/glx.h>

namespace Host {

GLShare currentGLXShare()
{
    GLXContext context = glXGetCurrentContext();
    if (!context)
        return {};
    return {GLShare::eGLX, context, glXGetCurrentDisplay()};
}

} // namespace Host
