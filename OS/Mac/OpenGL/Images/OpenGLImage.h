#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"
#include "OS/Mac/OpenGL/Images/TextureDetails.h"

#include <OS/Compute/iGPUBuffer.h>
#include <OS/OpenGL/iOpenGLImage.h>
#include <OS/Painting/iHostImage.h>

class QGLFramebufferObject;

/// A picture on the GPU: a texture in a framebuffer object. Row 0 of the texture is the top row.
/// Pixels are premultiplied.
///
/// Made where OpenGLUtils is built; any thread then. Released images leave their texture to the
/// next image of the same storage (OpenGLTextureCache).
class OpenGLImage final : public iOpenGLImage
{
public:
    /// An image with a texture whose pixels are whatever was there.
    /// @return null where OpenGLUtils::isTextureSizePossible says no
    static Tq::Ptr<iGPUImage> create(const XY<int>& size, eFormat format);

    /// As create(); an impossible size leaves it without a texture.
    OpenGLImage(const XY<int>& size, eFormat format);
    /// A copy of a host image, packed into the format. Has all pixels of an image whose scale is
    /// not 1. Where there are no pixels to read, prints the assertion report for "imageLock" at
    /// "OS/Mac/OpenGLImage line 34" and has no texture.
    OpenGLImage(const Tq::Ptr<iHostImage>& host, eFormat format);
    /// An image of a framebuffer object that others may share; it is not recycled. Format 3.
    explicit OpenGLImage(const Tq::Ptr<QGLFramebufferObject>& framebuffer);
    /// Outside of the GL lock or under it.
    ~OpenGLImage() override;
    OpenGLImage(const OpenGLImage&) = delete;
    OpenGLImage& operator=(const OpenGLImage&) = delete;

    /// Takes a texture from the cache or makes one.
    ///
    /// Where the image has one already, prints the assertion report for "impl_ == NULL" at
    /// "OS/Mac/OpenGLImage line 87" and goes on. An impossible size changes nothing more. A texture
    /// that the driver refuses prints the one for "impl_->isValid()" at "OS/Mac/OpenGLImage line
    /// 121" and leaves the image without: so do sizes below 0, which are not impossible,
    /// deliberately, and widths at which the format has no whole texel.
    /// @param data rows in storage layout, next to each other; null leaves the pixels as they are
    void allocTexture(const XY<int>& size, const void* data);

    XY<int> getSize() const override { return size_; }
    int getBitsPerPixel() const override;
    /// A renderer that holds the GL lock until it is released, on the calling thread. Coordinates
    /// are texels. Null where there is no texture. See OpenGLImageRenderer.
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    /// In the same format.
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const override;
    eFormat getFormat() const override { return format_; }
    unsigned int getTextureID() const override;
    void bind() override;
    void unbind() override;
    XY<int> getPhysicalSize() const override;
    Tq::Ptr<iObject> lock() override;

    /// What storage an image takes. A value that is no format is stored as format 3, after the
    /// assertion report for "fmt == eARGB8" at "OS/Mac/OpenGLImage line 171".
    static TextureDetails getStorageDetails(const XY<int>& size, eFormat format);

    const Tq::Ptr<QGLFramebufferObject>& framebuffer() const { return impl_; }
    /// The compute buffer made of the texture; it travels with it.
    const Tq::Ptr<iGPUBuffer>& buffer() const { return buffer_; }
    void setBuffer(const Tq::Ptr<iGPUBuffer>& buffer) { buffer_ = buffer; }

private:
    void allocate(const XY<int>& size, const void* data, int texelsToNextRow);
    void takeFromCache(const TextureDetails& details);
    void releaseTexture();

    Tq::Ptr<QGLFramebufferObject> impl_;
    Tq::Ptr<iGPUBuffer> buffer_;
    XY<int> size_;
    eFormat format_ = eARGB8;
    bool allocated_ = false;
};
