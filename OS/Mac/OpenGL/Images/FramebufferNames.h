#pragma once

class QOpenGLContext;

/// Whether the contexts of the sharing group share the names of framebuffer objects, as they share
/// those of textures: the standard leaves it open, and drivers differ.
///
/// Where they do not, an image is drawn on through a framebuffer object of the context at hand.
/// Everything here happens under the GL lock.
class FramebufferNames
{
public:
    /// Finds out, with the group's first context current; part of building OpenGLUtils. The
    /// environment's VANTOR_GL_FBO_PER_CONTEXT=1 answers "not shared" for any driver.
    static void probe();
    static bool areShared() { return shared_; }

    /// Makes a texture what the current context draws into, through the context's own framebuffer
    /// object. @return false when the driver refuses
    static bool bindOwn(unsigned int texture);

private:
    static inline bool shared_ = true;
};
