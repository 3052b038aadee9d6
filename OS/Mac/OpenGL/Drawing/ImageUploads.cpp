#include "OS/Mac/OpenGL/Drawing/ImageUploads.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/Painting/QtImage.h"

namespace GLDrawing {

namespace {

bool isWords(const QImage& image)
{
    switch (image.format()) {
    case QImage::Format_RGB32:
    case QImage::Format_ARGB32:
    case QImage::Format_ARGB32_Premultiplied:
        return true;
    default:
        return false;
    }
}

bool fitsTexture(int width, int height)
{
    const XY<int> most = OpenGLUtils::getMaxTextureSize();
    return width >= 1 && height >= 1 && (most.x == 0 || (width <= most.x && height <= most.y));
}

} // namespace

HostPixels::HostPixels(const iHostImage& image)
{
    if (const auto* qtImage = dynamic_cast<const QtImage*>(&image)) {
        if (!qtImage->image())
            return;
        scale_ = qtImage->getScale();
        const QImage& pixels = *qtImage->image();
        // A view: a shared copy would have the next write to the image copy all of it.
        view_ = isWords(pixels) ? QImage(pixels.constBits(), pixels.width(), pixels.height(),
                                         pixels.bytesPerLine(), pixels.format())
                                : pixels.convertToFormat(QImage::Format_ARGB32_Premultiplied);
        return;
    }
    if (image.getBitsPerPixel() != 32)
        return;
    guard_ = image.lock();
    if (!guard_)
        return;
    const Tq::Ptr<const iPixelGuard> pixels = guard_;
    view_ = QImage(
        pixels->getPixels(), guard_->getSize().x, guard_->getSize().y, guard_->getStride(),
        image.isAlphaPreMultiplied() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_ARGB32);
    if (view_.bytesPerLine() % 4 != 0)
        view_ = view_.copy(); // GL counts from row to row in pixels
}

void ImageUploads::announce(const iHostImage& image, const Tq::Rectangle<int>& part)
{
    const auto [entry, isNew] = images_.try_emplace(&image);
    Tq::Rectangle<int>& all = entry->second.part.part;
    all = isNew ? part : all.united(part);
}

bool ImageUploads::holds(const iHostImage& image) const
{
    const auto found = images_.find(&image);
    return found != images_.end() && found->second.part.texture != 0 &&
           found->second.round == pool_.round();
}

UploadedPart ImageUploads::upload(const iHostImage& image, const HostPixels& pixels)
{
    const auto found = images_.find(&image);
    if (found == images_.end())
        return {};
    Entry& entry = found->second;
    if (entry.part.texture != 0 && entry.round == pool_.round())
        return entry.part;
    const QImage& view = pixels.image();
    const Tq::Rectangle<int>& part = entry.part.part;
    if (!fitsTexture(part.width(), part.height()))
        return {};
    const Texture& texture = pool_.lend(part.width(), part.height());
    texture.upload(view.constScanLine(part.top) + std::ptrdiff_t(4) * part.left,
                   static_cast<int>(view.bytesPerLine() / 4));
    entry.part.texture = texture.name();
    entry.part.isOpaque = view.format() == QImage::Format_RGB32;
    entry.part.isStraight = view.format() == QImage::Format_ARGB32;
    entry.round = pool_.round();
    return entry.part;
}

} // namespace GLDrawing
