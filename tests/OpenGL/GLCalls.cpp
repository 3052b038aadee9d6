#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OpenGL/GLCalls.h"

#include <atomic>

namespace {

std::atomic<int> specified{0}, uploaded{0};

} // namespace

// The linker's names for the call that is replaced and the one behind it.
extern "C" {
void __real_glTexImage2D(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum,
                         const void*);
void __wrap_glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height,
                         GLint border, GLenum format, GLenum type, const void* data)
{
    ++specified;
    __real_glTexImage2D(target, level, internal, width, height, border, format, type, data);
}

void __real_glTexSubImage2D(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum,
                            const void*);
void __wrap_glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width,
                            GLsizei height, GLenum format, GLenum type, const void* data)
{
    ++uploaded;
    __real_glTexSubImage2D(target, level, x, y, width, height, format, type, data);
}
}

int GLCalls::texturesSpecified()
{
    return specified;
}

int GLCalls::uploads()
{
    return uploaded;
}
