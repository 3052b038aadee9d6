#pragma once

#include "Effects/EffectRig.h"
#include "OpenGL/DrawingRig.h"
#include "OpenGL/ImageRig.h"

#include <OS/Primitives/ImageDescriptionEx.h>

/// Images drawn through effects by the GL renderer.
namespace EffectDrawingRig {

using Renderer = OpenGLGraphicPrimitivesRendererBase;
using Rect = ImageDescriptionEx::Rect;

constexpr QRgb kGround = DrawingRig::kGround;

inline Rect whole(const XY<int>& size)
{
    return {0.0f, 0.0f, static_cast<float>(size.x), static_cast<float>(size.y)};
}

inline ImageDescriptionEx through(const Tq::Ptr<OpenGLShaderEffect>& effect,
                                  const Tq::Ptr<iImageBase>& image, const Rect& from,
                                  const Rect& to, bool blend = false)
{
    ImageDescriptionEx desc;
    desc.image_ = image;
    desc.technique_.effect_ = effect;
    desc.sourceRect_ = from;
    desc.destRect_ = to;
    desc.blend_ = blend;
    return desc;
}

// Draws one description on a target of its own.
inline QImage drawn(const ImageDescriptionEx& desc, int width, int height, double ratio = 1.0,
                    Renderer::eOrientation orientation = Renderer::eTexture)
{
    return DrawingRig(width, height, ratio, orientation)
        .withGL([&](iGraphicPrimitivesRenderer& renderer) { renderer.renderMulti(&desc, 1); });
}

inline QImage drawnWhole(const Tq::Ptr<OpenGLShaderEffect>& effect,
                         const Tq::Ptr<OpenGLImage>& image)
{
    const XY<int> size = image->getSize();
    return drawn(through(effect, image, whole(size), whole(size)), size.x, size.y);
}

inline Tq::Ptr<OpenGLImage> uploaded(const Tq::Ptr<iHostImage>& image)
{
    return new OpenGLImage(image, iGPUImage::eARGB8);
}

inline Tq::Ptr<OpenGLImage> plain(int width, int height, const NormalisedRGB& colour)
{
    const Tq::Ptr<OpenGLImage> image = makeImage({width, height});
    clear(*image, colour);
    return image;
}

} // namespace EffectDrawingRig
