#include "OpenGL/DrawingRig.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include <cmath>

namespace {

// Before the rig's own protector, which does nothing without.
int built(int value)
{
    OpenGLUtils::instance();
    return value;
}

} // namespace

TextureTarget::TextureTarget(int width, int height, QRgb ground) : width_(width), height_(height)
{
    glGenTextures(1, &texture_);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glGenFramebuffers(1, &framebuffer_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_);
    glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
    glViewport(0, 0, width, height);
    glClearColor(float(qRed(ground)) / 255, float(qGreen(ground)) / 255, float(qBlue(ground)) / 255,
                 float(qAlpha(ground)) / 255);
    glClear(GL_COLOR_BUFFER_BIT);
}

TextureTarget::~TextureTarget()
{
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glDeleteFramebuffers(1, &framebuffer_);
    glDeleteTextures(1, &texture_);
}

QImage TextureTarget::read() const
{
    QImage image(width_, height_, QImage::Format_ARGB32_Premultiplied);
    glReadPixels(0, 0, width_, height_, GL_BGRA, GL_UNSIGNED_BYTE, image.bits());
    return image;
}

DrawingRig::DrawingRig(int width, int height, double ratio, Orientation orientation, QRgb ground)
    : width_(built(static_cast<int>(std::ceil(width * ratio)))),
      height_(static_cast<int>(std::ceil(height * ratio))), logical_(width, height), ratio_(ratio),
      orientation_(orientation), ground_(ground)
{
}

QImage DrawingRig::withToolkit(const Code& code) const
{
    Tq::Ptr<QImage> image = new QImage(width_, height_, QImage::Format_ARGB32_Premultiplied);
    image->fill(ground_);
    image->setDevicePixelRatio(ratio_);
    {
        QtGraphicPrimitivesRenderer renderer(image, 1);
        code(renderer);
    }
    image->setDevicePixelRatio(1.0);
    return *image;
}

QImage DrawingRig::withGL(const Code& code, const std::function<void()>& prepare) const
{
    const TextureTarget target(width_, height_, ground_);
    if (prepare)
        prepare();
    {
        OpenGLGraphicPrimitivesRenderer renderer(logical_, ratio_, orientation_);
        code(renderer);
    }
    const QImage image = target.read();
    return orientation_ == OpenGLGraphicPrimitivesRendererBase::eWindow ? image.mirrored() : image;
}
