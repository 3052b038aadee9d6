#include "OS/Mac/Effects/SceneTarget.h"

#include <algorithm>

namespace {

constexpr GLsizei kSamples = 4;

GLsizei mostSamples()
{
    GLint most = 0;
    glGetIntegerv(GL_MAX_SAMPLES, &most); // unknown to old drivers
    glGetError();
    return most >= 2 ? std::min(most, kSamples) : 0;
}

bool isBoundComplete()
{
    return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

} // namespace

SceneTarget::SceneTarget(GLuint texture, const XY<int>& size, bool isDeep)
    : size_(size), isDeep_(isDeep)
{
    glGenFramebuffers(1, &output_);
    glBindFramebuffer(GL_FRAMEBUFFER, output_);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture, 0);
    const GLsizei samples = mostSamples();
    isComplete_ = isBoundComplete() && ((samples > 0 && attach(samples)) || attach(0));
}

bool SceneTarget::attach(GLsizei samples)
{
    GLint before = 0;
    glGetIntegerv(GL_RENDERBUFFER_BINDING, &before);
    const auto storage = [&](GLuint& name, GLenum format) {
        if (name == 0)
            glGenRenderbuffers(1, &name);
        glBindRenderbuffer(GL_RENDERBUFFER, name);
        if (samples > 0)
            glRenderbufferStorageMultisample(GL_RENDERBUFFER, samples, format, size_.x, size_.y);
        else
            glRenderbufferStorage(GL_RENDERBUFFER, format, size_.x, size_.y);
    };
    if (samples > 0) {
        glGenFramebuffers(1, &sampled_);
        storage(colours_, isDeep_ ? GL_RGBA16 : GL_RGBA8);
    } else if (sampled_ != 0) {
        glDeleteFramebuffers(1, &sampled_);
        sampled_ = 0;
    }
    storage(depth_, GL_DEPTH_COMPONENT24);
    glBindRenderbuffer(GL_RENDERBUFFER, static_cast<GLuint>(before));
    glBindFramebuffer(GL_FRAMEBUFFER, sampled_ != 0 ? sampled_ : output_);
    if (samples > 0)
        glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, colours_);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_);
    return isBoundComplete();
}

void SceneTarget::finish()
{
    if (sampled_ == 0)
        return;
    glBindFramebuffer(GL_READ_FRAMEBUFFER, sampled_);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, output_);
    glBlitFramebuffer(0, 0, size_.x, size_.y, 0, 0, size_.x, size_.y, GL_COLOR_BUFFER_BIT,
                      GL_NEAREST);
}

SceneTarget::~SceneTarget()
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &output_);
    if (sampled_ != 0)
        glDeleteFramebuffers(1, &sampled_);
    glDeleteRenderbuffers(1, &depth_);
    if (colours_ != 0)
        glDeleteRenderbuffers(1, &colours_);
}
