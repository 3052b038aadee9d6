#include "OS/Mac/OpenGL/Drawing/ReadablePicture.h"

#include "OS/Mac/OpenGL/Drawing/ImageSource.h"
#include "OS/Mac/OpenGL/Drawing/ImageUploads.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <algorithm>
#include <cmath>

namespace GLDrawing {

namespace {

Tq::Rectangle<int> pixelsAround(const ImageDescriptionEx::Rect& part)
{
    constexpr float kNear = 1e-4f;
    return {static_cast<int>(std::floor(part.left + kNear)),
            static_cast<int>(std::floor(part.top + kNear)),
            static_cast<int>(std::ceil(part.right - kNear)),
            static_cast<int>(std::ceil(part.bottom - kNear))};
}

bool isDeep(const iImageBase* image)
{
    const auto* gpuImage = dynamic_cast<const iGPUImage*>(image);
    if (!gpuImage)
        return false;
    switch (gpuImage->getFormat()) {
    case iGPUImage::eRGB16:
    case iGPUImage::eYUV16:
    case iGPUImage::eARGB16:
    case iGPUImage::eARGB2101010:
        return true;
    default:
        return false;
    }
}

ReadablePicture pictureOf(const Tq::Ptr<iGPUImage>& copy)
{
    ReadablePicture picture;
    const auto* texture = dynamic_cast<const iOpenGLTexture*>(copy.get());
    if (!texture || texture->getTextureID() == 0)
        return picture;
    picture.texture = texture->getTextureID();
    picture.size = copy->getSize();
    picture.copy = copy;
    return picture;
}

// Where contexts do not share framebuffer objects, a context has one, and drawing on the copy has
// given it the copy's texture: gives it back the one that it had, at the end of a scope.
class DrawnTextureKeeper
{
public:
    DrawnTextureKeeper() : texture_(drawnTexture()) {}
    ~DrawnTextureKeeper()
    {
        if (texture_ != 0 && drawnTexture() != texture_)
            glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_,
                                   0);
    }
    DrawnTextureKeeper(const DrawnTextureKeeper&) = delete;
    DrawnTextureKeeper& operator=(const DrawnTextureKeeper&) = delete;

private:
    GLuint texture_;
};

// Draws a part of an image, in its pixels, on a texture of its own.
ReadablePicture copyPart(const iImageBase* image, const Tq::Rectangle<int>& part,
                         const XY<float>& scale)
{
    const DrawnTextureKeeper keeper;
    const Tq::Ptr<iGPUImage> copy =
        OpenGLImage::create(part.size(), isDeep(image) ? iGPUImage::eARGB16 : iGPUImage::eARGB8);
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer =
        copy ? copy->getPrimitivesRenderer(true) : Tq::Ptr<iGraphicPrimitivesRenderer>();
    if (!renderer)
        return {};
    ImageDescriptionEx desc;
    desc.image_ = const_cast<iImageBase*>(image);
    desc.blend_ = false;
    const auto f = [](int value) { return static_cast<float>(value); };
    desc.sourceRect_ = {f(part.left) / scale.x, f(part.top) / scale.y, f(part.right) / scale.x,
                        f(part.bottom) / scale.y};
    desc.destRect_ = {0.0f, 0.0f, f(part.width()), f(part.height())};
    renderer->renderMulti(&desc, 1);
    return pictureOf(copy);
}

// The whole image's own texture, or a fresh upload; nothing where neither will do.
ReadablePicture wholePicture(const iImageBase* image, const XY<int>& size, GLuint output)
{
    if (auto* host = dynamic_cast<const iHostImage*>(image))
        return pictureOf(new OpenGLImage(const_cast<iHostImage*>(host), iGPUImage::eARGB8));
    const ImageSource source = ImageSource::of(image);
    ReadablePicture picture;
    if (source.program.layout == ImageProgram::eWords && !source.program.isOpaque &&
        source.texture != output)
        picture.texture = source.texture;
    picture.size = size;
    return picture;
}

} // namespace

ReadablePicture readablePicture(const iImageBase* image, const ImageDescriptionEx::Rect& part,
                                const XY<float>& scale, GLuint output)
{
    const PixelMeasure measure = PixelMeasure::of(image);
    if (measure.size.x < 1 || measure.size.y < 1)
        return {};
    const Tq::Rectangle<int> around = pixelsAround(part);
    const bool isAll = around.left <= 0 && around.top <= 0 && around.right >= measure.size.x &&
                       around.bottom >= measure.size.y;
    ReadablePicture picture = isAll ? wholePicture(image, measure.size, output) : ReadablePicture();
    Tq::Rectangle<int> held{0, 0, measure.size.x, measure.size.y};
    if (picture.texture == 0) {
        held = isAll ? held : around;
        picture = copyPart(image, held, scale);
    }
    const auto place = [](float value, int from, int to) {
        return (value - static_cast<float>(from)) / static_cast<float>(std::max(to - from, 1));
    };
    const auto exact = [](float value) { return std::abs(value - 1.0f) < 1e-5f ? 1.0f : value; };
    picture.part = {std::max(place(part.left, held.left, held.right), 0.0f),
                    std::max(place(part.top, held.top, held.bottom), 0.0f),
                    exact(place(part.right, held.left, held.right)),
                    exact(place(part.bottom, held.top, held.bottom))};
    return picture;
}

ReadablePicture readablePicture(const iImageBase* image, GLuint output)
{
    const PixelMeasure measure = PixelMeasure::of(image);
    return readablePicture(
        image, {0.0f, 0.0f, static_cast<float>(measure.size.x), static_cast<float>(measure.size.y)},
        measure.scale, output);
}

PixelMeasure PixelMeasure::of(const iImageBase* image)
{
    if (const auto* host = dynamic_cast<const iHostImage*>(image)) {
        const HostPixels pixels(*host);
        const auto scale = static_cast<float>(pixels.scale());
        return {{pixels.image().width(), pixels.image().height()}, {scale, scale}};
    }
    const ImageSource source = ImageSource::of(image);
    if (source.texture == 0)
        return {};
    return {source.size, {source.scaleX, source.scaleY}};
}

GLuint drawnTexture()
{
    GLint framebuffer = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &framebuffer);
    if (framebuffer == 0)
        return 0;
    GLint kind = GL_NONE, name = 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE, &kind);
    if (kind != GL_TEXTURE)
        return 0;
    glGetFramebufferAttachmentParameteriv(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0,
                                          GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME, &name);
    return static_cast<GLuint>(name);
}

} // namespace GLDrawing
