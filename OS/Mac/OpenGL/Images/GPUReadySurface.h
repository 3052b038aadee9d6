#pragma once

#include <OS/OpenGL/iGPUImage.h>
#include <OS/Painting/iHostImage.h>

#include <QImage>
#include <cstdint>
#include <memory>

/// A picture in main memory whose pixels lie as a storage format of GPU images has them, so that an
/// upload in that format copies them as they are: for what decoders write.
///
/// Its bytes are no 32-bit words, so it is not drawn on and not drawn with; rows stand next to each
/// other. A new one is black.
class GPUReadySurface final : public iHostImage
{
public:
    /// Formats of 32-bit words get a plain host image, which can be drawn on.
    /// @return null when a side is below 1, when no pixel fits a row, or the picture would exceed
    /// the cap on pictures or the memory
    static Tq::Ptr<iHostImage> create(const XY<int>& size, iGPUImage::eFormat format);

    XY<int> getSize() const override { return size_; }
    /// The bits of the format, but 0 for 2:10:10:10: 32 is what host images of plain words say.
    int getBitsPerPixel() const override;
    /// Bytes of a row in storage.
    int getStride() const override;
    bool isAlphaPreMultiplied() const override { return true; }
    Tq::Ptr<iPixelGuard> lock() const override;
    /// Null.
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    /// In the same format.
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const override;

    iGPUImage::eFormat getFormat() const { return format_; }
    /// The pixels as premultiplied words; null where there is no memory.
    QImage toWords() const;

private:
    GPUReadySurface(const XY<int>& size, iGPUImage::eFormat format,
                    std::unique_ptr<std::uint8_t[]> pixels);

    XY<int> size_;
    iGPUImage::eFormat format_;
    std::unique_ptr<std::uint8_t[]> pixels_;
};
