#include "OS/Mac/OpenGL/Images/GPUReadySurface.h"

#include "OS/Mac/OpenGL/Images/PixelPacking.h"
#include "OS/Mac/Painting/PictureLimits.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <vector>

namespace {

class Guard final : public iPixelGuard
{
public:
    Guard(Tq::Ptr<const GPUReadySurface> owner, std::uint8_t* pixels)
        : owner_(std::move(owner)), pixels_(pixels)
    {
    }

    std::uint8_t* getPixels() override { return pixels_; }
    const std::uint8_t* getPixels() const override { return pixels_; }
    int getStride() const override { return owner_->getStride(); }
    XY<int> getSize() const override { return owner_->getSize(); }

private:
    Tq::Ptr<const GPUReadySurface> owner_;
    std::uint8_t* pixels_;
};

} // namespace

Tq::Ptr<iHostImage> GPUReadySurface::create(const XY<int>& size, iGPUImage::eFormat format)
{
    if (size.x < 1 || size.y < 1 ||
        !PictureLimits::admits(static_cast<std::uint64_t>(size.x),
                               static_cast<std::uint64_t>(size.y)))
        return {};
    const PixelPacking packing(format);
    if (packing.isPlain() || format == iGPUImage::eRGB32) {
        Tq::Ptr<QtImage> words(new QtImage(size, QtImage::getDefaultFormat(), 1));
        return words->image() ? Tq::Ptr<iHostImage>(words) : Tq::Ptr<iHostImage>();
    }
    if (packing.rowBytes(size.x) == 0)
        return {};
    return new GPUReadySurface(size, format);
}

GPUReadySurface::GPUReadySurface(const XY<int>& size, iGPUImage::eFormat format)
    : size_(size), format_(format)
{
    const PixelPacking packing(format);
    const std::size_t rowBytes = packing.rowBytes(size.x);
    const auto rows = static_cast<std::size_t>(size.y);
    pixels_ = std::make_unique_for_overwrite<std::uint8_t[]>(rowBytes * rows);
    const std::vector<std::uint32_t> black(static_cast<std::size_t>(size.x), 0xFF000000u);
    packing.packRow(black.data(), size.x, pixels_.get());
    for (std::size_t row = 1; row < rows; ++row)
        std::copy_n(pixels_.get(), rowBytes, pixels_.get() + row * rowBytes);
}

int GPUReadySurface::getBitsPerPixel() const
{
    return format_ == iGPUImage::eARGB2101010 ? 0 : PixelPacking(format_).bitsPerPixel();
}

int GPUReadySurface::getStride() const
{
    return static_cast<int>(PixelPacking(format_).rowBytes(size_.x));
}

Tq::Ptr<iPixelGuard> GPUReadySurface::lock() const
{
    return new Guard(Tq::Ptr<const GPUReadySurface>(this), pixels_.get());
}

Tq::Ptr<iGraphicPrimitivesRenderer> GPUReadySurface::getPrimitivesRenderer(bool /*antialias*/)
{
    return {};
}

Tq::Ptr<iImage> GPUReadySurface::createCompatibleImage(const XY<int>& size) const
{
    return create(size, format_);
}

QImage GPUReadySurface::toWords() const
{
    QImage words = PictureLimits::allocate(size_.x, size_.y, QImage::Format_ARGB32_Premultiplied);
    if (words.isNull())
        return words;
    const PixelPacking packing(format_);
    const std::size_t rowBytes = packing.rowBytes(size_.x);
    for (int y = 0; y < size_.y; ++y)
        packing.unpackRow(pixels_.get() + rowBytes * static_cast<std::size_t>(y), size_.x,
                          reinterpret_cast<std::uint32_t*>(words.scanLine(y)));
    return words;
}
