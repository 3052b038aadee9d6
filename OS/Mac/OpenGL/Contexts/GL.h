#pragma once

// The GL functions, all exported by the GL library itself. To be included before anything of the
// toolkit's, which includes GL without them.
#ifndef GL_GLEXT_PROTOTYPES
#define GL_GLEXT_PROTOTYPES 1
#endif
#include <GL/gl.h>
#include <GL/glext.h>
