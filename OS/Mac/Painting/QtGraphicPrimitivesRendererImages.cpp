// The image overload of QtGraphicPrimitivesRenderer: blits, and scrolling an image within itself.
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Painting/QtImage.h"

#include <algorithm>
#include <cstring>

namespace {

// Wide enough for the scaled edges of any description.
using Box = Tq::Rectangle<long long>;

Box scaled(const Tq::Rectangle<int>& rectangle, long long scale)
{
    return {rectangle.left * scale, rectangle.top * scale, rectangle.right * scale,
            rectangle.bottom * scale};
}

// Cuts a rectangle to the area, and another one by the same amounts on each side.
void cutBoth(Box& cut, Box& other, const Box& area)
{
    const long long left = std::max(area.left - cut.left, 0ll);
    const long long top = std::max(area.top - cut.top, 0ll);
    const long long right = std::max(cut.right - area.right, 0ll);
    const long long bottom = std::max(cut.bottom - area.bottom, 0ll);
    for (Box* rectangle : {&cut, &other}) {
        rectangle->left += left;
        rectangle->top += top;
        rectangle->right -= right;
        rectangle->bottom -= bottom;
    }
}

bool isEmpty(const Box& rectangle)
{
    return rectangle.left >= rectangle.right || rectangle.top >= rectangle.bottom;
}

} // namespace

void QtGraphicPrimitivesRenderer::setBlending(bool blend)
{
    painter_.setCompositionMode(blend ? QPainter::CompositionMode_SourceOver
                                      : QPainter::CompositionMode_Source);
}

void QtGraphicPrimitivesRenderer::resetBlending()
{
    painter_.setCompositionMode(QPainter::CompositionMode_Source);
    painter_.setOpacity(1.0);
}

void QtGraphicPrimitivesRenderer::renderMulti(const ImageDescription* descs, unsigned int count)
{
    if (!active_)
        return;
    soften(antialias_);
    for (const ImageDescription* desc = descs; desc != descs + count; ++desc)
        drawImage(*desc);
    resetBlending();
}

void QtGraphicPrimitivesRenderer::drawImage(const ImageDescription& desc)
{
    const auto* image = dynamic_cast<const iHostImage*>(desc.image_.get());
    if (!image || image->getSize().x < 1 || image->getSize().y < 1)
        return;
    painter_.setOpacity(static_cast<double>(desc.opacity_));

    if (const auto* qtImage = dynamic_cast<const QtImage*>(image)) {
        const QImage& source = *qtImage->image();
        if (!overlapsItself(source, desc)) {
            drawPixels(source, desc, qtImage->getScale());
        } else if (desc.destROI_.top < desc.sourceROI_.top) {
            moveRowsUp(desc);
        } else {
            // The painter copies from the top row down, over rows that it has yet to read.
            drawPixels(source.copy(), desc, qtImage->getScale());
        }
        return;
    }
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    if (!guard || image->getBitsPerPixel() != 32)
        return;
    const Tq::Ptr<const iPixelGuard> pixels = guard;
    const QImage source(pixels->getPixels(), guard->getSize().x, guard->getSize().y,
                        guard->getStride(),
                        image->isAlphaPreMultiplied() ? QImage::Format_ARGB32_Premultiplied
                                                      : QImage::Format_ARGB32);
    drawPixels(source, desc, 1);
}

// Unscaled: as much as both rectangles hold, at the destination's top left.
void QtGraphicPrimitivesRenderer::drawPixels(const QImage& source, const ImageDescription& desc,
                                             int sourceScale)
{
    const int width = std::min(desc.destROI_.width(), desc.sourceROI_.width());
    const int height = std::min(desc.destROI_.height(), desc.sourceROI_.height());
    if (width < 1 || height < 1)
        return;
    setBlending(desc.blend_);
    const QPoint place(desc.destROI_.left, desc.destROI_.top);
    if (sourceScale == 1) {
        painter_.drawImage(place, source,
                           QRect(desc.sourceROI_.left, desc.sourceROI_.top, width, height));
        return;
    }
    const QRectF physical(desc.sourceROI_.left * sourceScale, desc.sourceROI_.top * sourceScale,
                          width * sourceScale, height * sourceScale);
    painter_.drawImage(QRectF(place, QSizeF(width, height)), source, physical);
}

bool QtGraphicPrimitivesRenderer::overlapsItself(const QImage& source,
                                                 const ImageDescription& desc) const
{
    return &source == image_.get() && desc.destROI_.intersection(desc.sourceROI_).hasArea();
}

// What may be read and written: the image, and the painter's clip rectangle where it clips; in
// pixels of the image.
Tq::Rectangle<long long> QtGraphicPrimitivesRenderer::movableArea() const
{
    const Box whole{0, 0, image_->width(), image_->height()};
    if (!painter_.hasClipping())
        return whole;
    const QRect box = clip_.boundingRect();
    const Tq::Rectangle<int> clip{box.left(), box.top(), box.right() + 1, box.bottom() + 1};
    return whole.intersection(scaled(clip, scale_));
}

// The painter would read rows that it has already written. From the top row down every row is read
// first, because the destination lies above the source.
void QtGraphicPrimitivesRenderer::moveRowsUp(const ImageDescription& desc)
{
    if (desc.destROI_.left != desc.sourceROI_.left || desc.destROI_.right != desc.sourceROI_.right)
        OSInternal::reportAssertion("( desc.destROI_.left() == desc.sourceROI_.left() ) && "
                                    "( desc.destROI_.right() == desc.sourceROI_.right() )",
                                    "OS/Mac/QtGraphicPrimitivesRenderer line 392");
    Box dest = scaled(desc.destROI_, scale_);
    Box source = scaled(desc.sourceROI_, scale_);
    const Box area = movableArea();
    cutBoth(dest, source, area);
    cutBoth(source, dest, area);
    if (isEmpty(dest) || isEmpty(source))
        return;
    if (source.width() != dest.width())
        OSInternal::reportAssertion("clippedSourceROI.width() == clippedDestROI.width()",
                                    "OS/Mac/QtGraphicPrimitivesRenderer line 432");
    if (source.height() != dest.height())
        OSInternal::reportAssertion("clippedSourceROI.height() == clippedDestROI.height()",
                                    "OS/Mac/QtGraphicPrimitivesRenderer line 433");

    const std::ptrdiff_t stride = image_->bytesPerLine();
    const std::ptrdiff_t pixelBytes = image_->depth() / 8;
    auto* pixels =
        const_cast<uchar*>(image_->constBits()); // bits() could move them from under the painter
    const auto rowBytes =
        static_cast<std::size_t>(std::min(source.width(), dest.width()) * pixelBytes);
    const long long rows = std::min(source.height(), dest.height());
    for (long long row = 0; row < rows; ++row)
        std::memmove(pixels + (dest.top + row) * stride + dest.left * pixelBytes,
                     pixels + (source.top + row) * stride + source.left * pixelBytes, rowBytes);
}
