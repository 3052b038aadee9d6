#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

/// Puts GL's attributes, arrays, matrices, program and framebuffers back as they were, at the end
/// of a scope. In it, matrices are identity, colours white, and arrays come from main memory.
class GLStateKeeper
{
public:
    /// What glPushAttrib is to keep: all that effects change.
    static constexpr GLbitfield kAttributes = GL_COLOR_BUFFER_BIT | GL_CURRENT_BIT |
                                              GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_POLYGON_BIT |
                                              GL_SCISSOR_BIT | GL_STENCIL_BUFFER_BIT |
                                              GL_TRANSFORM_BIT | GL_VIEWPORT_BIT;

    GLStateKeeper();
    ~GLStateKeeper();
    GLStateKeeper(const GLStateKeeper&) = delete;
    GLStateKeeper& operator=(const GLStateKeeper&) = delete;

    /// Binds the framebuffers that were bound.
    void bindOutput() const;

private:
    GLint program_ = 0;
    GLint draw_ = 0;
    GLint read_ = 0;
};
