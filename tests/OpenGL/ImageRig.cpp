#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OpenGL/ImageRig.h"

#include <random>

Tq::Ptr<iHostImage> noise(const XY<int>& size, unsigned int seed)
{
    const Tq::Ptr<QtImage> image(new QtImage(size, QtImage::getDefaultFormat(), 1));
    std::mt19937 random(seed);
    for (int y = 0; y < size.y; ++y) {
        auto* row = reinterpret_cast<QRgb*>(image->image()->scanLine(y));
        for (int x = 0; x < size.x; ++x)
            row[x] = qPremultiply(static_cast<QRgb>(random()));
    }
    return image;
}

QImage pixelsOf(const Tq::Ptr<iHostImage>& image)
{
    if (!image)
        return {};
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    const XY<int> size = guard->getSize();
    return QImage(guard->getPixels(), size.x, size.y, guard->getStride(),
                  QImage::Format_ARGB32_Premultiplied)
        .copy();
}

QImage textureOf(const Tq::Ptr<OpenGLImage>& image)
{
    return pixelsOf(OpenGLUtils::instance().copyToHost(image));
}

void clear(OpenGLImage& image, const NormalisedRGB& colour)
{
    const Tq::Ptr<iObject> held = image.lock();
    image.bind();
    glClearColor(colour.red, colour.green, colour.blue, colour.alpha);
    glClear(GL_COLOR_BUFFER_BIT);
    image.unbind();
}
