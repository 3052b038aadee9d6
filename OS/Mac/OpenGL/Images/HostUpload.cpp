#include "OS/Mac/OpenGL/Images/HostUpload.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/GPUReadySurface.h"

HostUpload::HostUpload(const Tq::Ptr<iHostImage>& host, iGPUImage::eFormat format)
    : packing_(format), host_(host)
{
    if (const auto ready = host.dynamicCast<GPUReadySurface>()) {
        if (ready->getFormat() != format) {
            takeWords(ready->toWords());
            return;
        }
        ready_ = ready->lock();
        size_ = ready->getSize();
        data_ = ready_->getPixels();
        texelsToNextRow_ = packing_.texelsInRow(size_.x);
    } else if (!host_.image().isNull()) {
        takeWords(host_.image());
    }
}

void HostUpload::takeWords(QImage words)
{
    size_ = {words.width(), words.height()};
    words_ = std::move(words);
    if (!OpenGLUtils::isTextureSizePossible(size_)) { // not worth the work
        data_ = words_.constBits();
        return;
    }
    if (words_.format() != QImage::Format_ARGB32_Premultiplied)
        words_ = words_.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (words_.isNull()) // no memory
        return;
    if (packing_.isPlain()) {
        data_ = words_.constBits();
        texelsToNextRow_ = words_.bytesPerLine() / 4;
        return;
    }
    const std::size_t rowBytes = packing_.rowBytes(size_.x);
    // Never empty, so that an image too narrow for its format is told from one without pixels.
    packed_ = std::make_unique_for_overwrite<unsigned char[]>(
        rowBytes * static_cast<std::size_t>(size_.y) + 1);
    for (int y = 0; y < size_.y; ++y)
        packing_.packRow(reinterpret_cast<const std::uint32_t*>(words_.constScanLine(y)), size_.x,
                         packed_.get() + rowBytes * static_cast<std::size_t>(y));
    data_ = packed_.get();
    texelsToNextRow_ = packing_.texelsInRow(size_.x);
}
