#include "OS/Mac/OpenGL/Images/GPUReadySurface.h"

#include "OS/Mac/OpenGL/Images/PixelPacking.h"
#include "OS/Mac/Painting/PictureLimits.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <algorithm>
#include <limits>
#include <new>
#include <utility>
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
    const std::size_t rowBytes = packing.rowBytes(size.x);
    if (rowBytes == 0 || rowBytes > std::numeric_limits<int>::max())
        return {};
    const auto rows = static_cast<std::size_t>(size.y);
    std::unique_ptr<std::uint8_t[]> pixels(new (std::nothrow) std::uint8_t[rowBytes * rows]);
    if (!pixels)
        return {};
    const std::vector<std::uint32_t> black(static_cast<std::size_t>(size.x), 0xFF000000u);
    packing.packRow(black.data(), size.x, pixels.get());
    for (std::size_t row = 1; row < rows; ++row)
        std::copy_n(pixels.get(), rowBytes, pixels.get() + row * rowBytes);
    return new GPUReadySurface(size, format, std::move(pixels));
}

GPUReadySurface::GPUReadySurface(const XY<int>& size, iGPUImage::eFormat format,
                                 std::unique_ptr<std::uint8_t[]> pixels)
    : size_(size), format_(format), pixels_(std::move(pixels))
{
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
