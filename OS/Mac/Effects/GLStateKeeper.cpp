#include "OS/Mac/Effects/GLStateKeeper.h"

namespace {

constexpr GLenum kMatrices[] = {GL_PROJECTION, GL_MODELVIEW};

} // namespace

GLStateKeeper::GLStateKeeper()
{
    glGetIntegerv(GL_CURRENT_PROGRAM, &program_);
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &draw_);
    glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read_);
    glPushAttrib(kAttributes);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    for (const GLenum matrix : kMatrices) {
        glMatrixMode(matrix);
        glPushMatrix();
        glLoadIdentity();
    }
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);
}

GLStateKeeper::~GLStateKeeper()
{
    for (const GLenum matrix : kMatrices) {
        glMatrixMode(matrix);
        glPopMatrix();
    }
    glPopClientAttrib();
    glPopAttrib();
    glUseProgram(static_cast<GLuint>(program_));
    bindOutput();
}

void GLStateKeeper::bindOutput() const
{
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(draw_));
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read_));
}
