#include "OS/Mac/Painting/HostPixels.h"

#include "OS/Mac/Painting/QtImage.h"

namespace {

QImage::Format formatOf(const iHostImage& image)
{
    if (const auto* qtImage = dynamic_cast<const QtImage*>(&image))
        return qtImage->image() ? qtImage->image()->format() : QImage::Format_Invalid;
    if (image.getBitsPerPixel() != 32)
        return QImage::Format_Invalid;
    return image.isAlphaPreMultiplied() ? QImage::Format_ARGB32_Premultiplied
                                        : QImage::Format_ARGB32;
}

} // namespace

HostPixels::HostPixels(const Tq::Ptr<iHostImage>& image)
{
    if (image)
        guard_ = image->lock();
    if (!guard_)
        return;
    const iPixelGuard& pixels = *guard_;
    const XY<int> size = pixels.getSize();
    const QImage::Format format = formatOf(*image);
    if (format != QImage::Format_Invalid)
        view_ = QImage(pixels.getPixels(), size.x, size.y, pixels.getStride(), format);
}
