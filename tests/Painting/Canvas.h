#pragma once

#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"
#include "OS/Mac/Painting/QtImage.h"

#include <QPainter>

#include <concepts>
#include <functional>

/// A picture that tests draw on through a renderer, or through a plain painter for comparison. The
/// ground is opaque dark blue.
class Canvas
{
public:
    explicit Canvas(int width = 64, int height = 48, unsigned char scale = 1)
        : image(new QtImage({width, height}, QtImage::getDefaultFormat(), scale)), scale_(scale)
    {
        image->image()->fill(kGround);
    }

    /// Draws through a renderer that is released afterwards.
    Canvas& draw(const std::function<void(iGraphicPrimitivesRenderer&)>& code)
    {
        const auto renderer = image->getPrimitivesRenderer(false);
        code(*renderer);
        return *this;
    }
    template <std::derived_from<iGraphicPrimitive> T>
    Canvas& draw(const T& desc, bool antialias = false)
    {
        return draw([&](iGraphicPrimitivesRenderer& renderer) {
            renderer.setAntialiasingEnabled(antialias);
            renderer.render(desc);
        });
    }
    /// Draws what is expected with the toolkit alone, in the mode in which a renderer starts.
    Canvas& paint(const std::function<void(QPainter&)>& code)
    {
        QPainter painter(image->image().get());
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        painter.scale(scale_, scale_);
        code(painter);
        return *this;
    }

    const QImage& pixels() const { return *image->image(); }
    QRgb at(int x, int y) const { return pixels().pixel(x, y); }

    static constexpr QRgb kGround = 0xFF102040;

    Tq::Ptr<QtImage> image;

private:
    int scale_;
};
