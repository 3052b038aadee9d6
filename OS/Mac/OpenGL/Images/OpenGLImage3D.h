#pragma once

#include <OS/Core/Ptr.h>
#include <OS/OpenGL/iGPUImage3D.h>
#include <OS/Painting/iHostImage3D.h>

/// A cube of colours as a 3D texture, which it owns. Any thread.
class OpenGLImage3D final : public iGPUImage3D
{
public:
    /// Uploads a cube.
    ///
    /// The first coordinate varies slowest in what is uploaded, and yet its length is handed over
    /// as the width: a colour at (i, j, k) is found at texel index (i * y + j) * z + k of rows of
    /// x texels. Deliberate: the shaders that read cubes count on it.
    /// @return null for null
    static Tq::Ptr<iGPUImage3D> create(const Tq::Ptr<iHostImage3D>& host);

    /// Takes over a texture name and asks GL for its size.
    explicit OpenGLImage3D(unsigned int textureId);
    ~OpenGLImage3D() override;
    OpenGLImage3D(const OpenGLImage3D&) = delete;
    OpenGLImage3D& operator=(const OpenGLImage3D&) = delete;

    XYZ<unsigned char> getLogicalSize() const override { return logicalSize_; }
    XYZ<unsigned char> getPhysicalSize() const override { return physicalSize_; }
    unsigned int getTextureID() const override { return texture_; }

private:
    unsigned int texture_;
    XYZ<unsigned char> logicalSize_;
    XYZ<unsigned char> physicalSize_;
};
