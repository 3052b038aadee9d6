#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Images/OpenGLImageRenderer.h"

#include "OS/Mac/OpenGL/Images/FramebufferBinding.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"

// The context is asked for anew each time: somebody may have released it meanwhile.
template <class Code>
void OpenGLImageRenderer::onImage(Code code)
{
    const OpenGLContextProtector protector;
    if (!OpenGLContextProtector::hasContext())
        return;
    const FramebufferBinding binding;
    image_->bind();
    glViewport(0, 0, size_.x, size_.y);
    code();
    image_->unbind();
}

template <class T>
void OpenGLImageRenderer::draw(const T* descs, unsigned int count)
{
    onImage([&] {
        if (renderer_)
            renderer_->renderMulti(descs, count);
    });
}

OpenGLImageRenderer::OpenGLImageRenderer(const Tq::Ptr<OpenGLImage>& image, bool antialias)
    : image_(image), size_(image->getPhysicalSize())
{
    onImage([&] {
        renderer_.emplace(size_, 1.0, OpenGLGraphicPrimitivesRendererBase::eTexture);
        renderer_->setAntialiasingEnabled(antialias);
    });
}

OpenGLImageRenderer::~OpenGLImageRenderer()
{
    onImage([&] {
        renderer_.reset();
        glFlush();
    });
}

void OpenGLImageRenderer::setClipRegion(Tq::Ptr<iRegion> region)
{
    onImage([&] {
        if (renderer_)
            renderer_->setClipRegion(region);
    });
}

void OpenGLImageRenderer::setAntialiasingEnabled(bool enabled)
{
    onImage([&] {
        if (renderer_)
            renderer_->setAntialiasingEnabled(enabled);
    });
}

void OpenGLImageRenderer::renderMulti(const RectDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const EllipseDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const LineDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const TextDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const AlphaRectDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const BezierCurveDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const ImageDescription* descs, unsigned int count)
{
    draw(descs, count);
}

void OpenGLImageRenderer::renderMulti(const ImageDescriptionEx* descs, unsigned int count)
{
    draw(descs, count);
}
