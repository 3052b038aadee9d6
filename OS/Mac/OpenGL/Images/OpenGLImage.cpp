#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/FramebufferBinding.h"
#include "OS/Mac/OpenGL/Images/FramebufferNames.h"
#include "OS/Mac/OpenGL/Images/HostUpload.h"
#include "OS/Mac/OpenGL/Images/OpenGLImageRenderer.h"
#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"
#include "OS/Mac/OpenGL/Images/TextureRelease.h"

#include <QGLFramebufferObject>
#include <QOpenGLContext>
#include <utility>

namespace {

// Drivers keep only eight bits of sixteen behind the plain name.
GLint internalFormat(unsigned int glType)
{
    return glType == GL_UNSIGNED_SHORT ? GL_RGBA16 : GL_RGBA;
}

// Tells GL how far apart the rows of an upload are, for the life of a scope.
class RowLength
{
public:
    explicit RowLength(int texels) { glPixelStorei(GL_UNPACK_ROW_LENGTH, texels); }
    ~RowLength() { glPixelStorei(GL_UNPACK_ROW_LENGTH, 0); }
    RowLength(const RowLength&) = delete;
    RowLength& operator=(const RowLength&) = delete;
};

void upload(const QGLFramebufferObject& framebuffer, const TextureDetails& details,
            const void* data, int texelsToNextRow)
{
    const RowLength rowLength(texelsToNextRow);
    glEnable(GL_TEXTURE_2D);
    glBindTexture(GL_TEXTURE_2D, framebuffer.texture());
    glTexSubImage2D(GL_TEXTURE_2D, 0, 0, 0, details.physicalSize.x, details.physicalSize.y, GL_BGRA,
                    details.glType, data);
    glBindTexture(GL_TEXTURE_2D, 0);
    OpenGLUtils::checkForErrors();
}

// Null where the driver refuses.
Tq::Ptr<QGLFramebufferObject> makeFramebuffer(const TextureDetails& details, const void* data,
                                              int texelsToNextRow)
{
    const XY<int>& size = details.physicalSize;
    if (!OpenGLContextProtector::hasContext() || size.x < 1 || size.y < 1)
        return {};
    const FramebufferBinding binding; // the toolkit binds what it makes
    Tq::Ptr<QGLFramebufferObject> made(new QGLFramebufferObject(size.x, size.y, GL_TEXTURE_2D));
    if (!made->isValid())
        return {};
    const RowLength rowLength(texelsToNextRow);
    glBindTexture(GL_TEXTURE_2D, made->texture());
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    // Specified anew as it is uploaded: drivers then keep the bytes in this order, and drawing and
    // uploads take their fast paths.
    glTexImage2D(GL_TEXTURE_2D, 0, internalFormat(details.glType), size.x, size.y, 0, GL_BGRA,
                 details.glType, data);
    glBindTexture(GL_TEXTURE_2D, 0);
    glFlush();
    OpenGLUtils::checkForErrors();
    return made;
}

// What lock() answers.
class HeldContext final : public iObject
{
public:
    explicit HeldContext(Tq::Ptr<OpenGLImage> image) : image_(std::move(image)) {}

private:
    OpenGLContextProtector protector_; // after the image has gone
    Tq::Ptr<OpenGLImage> image_;
};

} // namespace

Tq::Ptr<iGPUImage> OpenGLImage::create(const XY<int>& size, eFormat format)
{
    if (!OpenGLUtils::isTextureSizePossible(size))
        return {};
    return new OpenGLImage(size, format);
}

OpenGLImage::OpenGLImage(const XY<int>& size, eFormat format) : format_(format)
{
    allocTexture(size, nullptr);
}

OpenGLImage::OpenGLImage(const Tq::Ptr<iHostImage>& host, eFormat format) : format_(format)
{
    const HostUpload pixels(host, format);
    if (!pixels.data()) {
        OSInternal::reportAssertion("imageLock", "OS/Mac/OpenGLImage line 34");
        return;
    }
    allocate(pixels.size(), pixels.data(), pixels.texelsToNextRow());
}

OpenGLImage::OpenGLImage(const Tq::Ptr<QGLFramebufferObject>& framebuffer) : impl_(framebuffer)
{
    if (impl_)
        size_ = {impl_->width(), impl_->height()};
}

OpenGLImage::~OpenGLImage()
{
    if (allocated_ && impl_)
        OpenGLTextureCache::instance().insert(*this, getStorageDetails(size_, format_));
    else
        releaseTexture();
}

void OpenGLImage::releaseTexture()
{
    if (impl_)
        releaseTextures(OpenGLTextureCache::CacheValue{std::move(impl_), std::move(buffer_)});
}

void OpenGLImage::allocTexture(const XY<int>& size, const void* data)
{
    allocate(size, data, 0);
}

void OpenGLImage::allocate(const XY<int>& size, const void* data, int texelsToNextRow)
{
    if (impl_)
        OSInternal::reportAssertion("impl_ == NULL", "OS/Mac/OpenGLImage line 87");
    if (!OpenGLUtils::isTextureSizePossible(size))
        return;
    size_ = size;
    const TextureDetails details = getStorageDetails(size, format_);
    takeFromCache(details);
    allocated_ = true;
    if (impl_ && !data)
        return; // with the pixels of the image before: callers draw over them
    const OpenGLContextProtector protector;
    if (impl_)
        return upload(*impl_, details, data, texelsToNextRow);
    impl_ = makeFramebuffer(details, data, texelsToNextRow);
    if (!impl_)
        OSInternal::reportAssertion("impl_->isValid()", "OS/Mac/OpenGLImage line 121");
}

void OpenGLImage::takeFromCache(const TextureDetails& details)
{
    releaseTexture();
    auto [framebuffer, buffer] = OpenGLTextureCache::instance().extract(details);
    impl_ = std::move(framebuffer);
    buffer_ = std::move(buffer);
}

int OpenGLImage::getBitsPerPixel() const
{
    return PixelPacking(format_).bitsPerPixel();
}

Tq::Ptr<iGraphicPrimitivesRenderer> OpenGLImage::getPrimitivesRenderer(bool antialias)
{
    if (!impl_)
        return {};
    return new OpenGLImageRenderer(Tq::Ptr<OpenGLImage>(this), antialias);
}

Tq::Ptr<iImage> OpenGLImage::createCompatibleImage(const XY<int>& size) const
{
    return create(size, format_);
}

unsigned int OpenGLImage::getTextureID() const
{
    return impl_ ? impl_->texture() : 0;
}

void OpenGLImage::bind()
{
    const bool bound =
        impl_ && OpenGLContextProtector::hasContext() &&
        (FramebufferNames::areShared() ? impl_->bind() : FramebufferNames::bindOwn(getTextureID()));
    if (!bound)
        OSInternal::reportAssertion("false", "OS/Mac/OpenGLImage line 56");
}

void OpenGLImage::unbind()
{
    if (!impl_ || !OpenGLContextProtector::hasContext() || !impl_->release())
        OSInternal::reportAssertion("false", "OS/Mac/OpenGLImage line 62");
}

XY<int> OpenGLImage::getPhysicalSize() const
{
    return getStorageDetails(size_, format_).physicalSize;
}

Tq::Ptr<iObject> OpenGLImage::lock()
{
    return new HeldContext(Tq::Ptr<OpenGLImage>(this));
}

TextureDetails OpenGLImage::getStorageDetails(const XY<int>& size, eFormat format)
{
    if (format < eRGB8 || format > eVYUY)
        OSInternal::reportAssertion("fmt == eARGB8", "OS/Mac/OpenGLImage line 171");
    const PixelPacking packing(format);
    const XY<int> physicalSize(packing.texelsInRow(size.x), size.y);
    if (format == eARGB2101010)
        return {GL_UNSIGNED_INT_2_10_10_10_REV, physicalSize};
    const bool shorts = packing.bitsPerPixel() >= 48;
    return {static_cast<unsigned int>(shorts ? GL_UNSIGNED_SHORT : GL_UNSIGNED_BYTE), physicalSize};
}
