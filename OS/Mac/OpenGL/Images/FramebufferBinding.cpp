#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/FramebufferBinding.h"

FramebufferBinding::FramebufferBinding()
{
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
    glGetIntegerv(GL_VIEWPORT, viewport_);
}

FramebufferBinding::~FramebufferBinding()
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
    glViewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
}
