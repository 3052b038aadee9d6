#pragma once

#include <OS/OpenGL/iGPUImage.h>
#include <OS/OpenGL/iOpenGLTexture.h>

/// A GPU image that is a GL texture in a framebuffer object.
class OS_API iOpenGLImage : public iGPUImage, public iOpenGLTexture
{
public:
    ~iOpenGLImage() override = default;

    /// Makes the image what GL draws into. Under the GL lock, with a context current. An image
    /// without a texture, and a refusal, print the assertion report for "false" at
    /// "OS/Mac/OpenGLImage line 56".
    virtual void bind() = 0;
    /// Ends that; a refusal prints the same at "OS/Mac/OpenGLImage line 62".
    virtual void unbind() = 0;
    /// In texels, which the format may pack several pixels into.
    virtual XY<int> getPhysicalSize() const = 0;
    /// Holds the GL lock, with a context of the library current on the calling thread, until the
    /// answer is released, on the same thread.
    virtual Tq::Ptr<iObject> lock() = 0;
};
