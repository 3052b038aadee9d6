#include "OS/Mac/Media/CGImageWrapper.h"

#include <OS/Painting/iPixelGuard.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

class CGImageWrapper::CGImageGuard final : public iPixelGuard
{
public:
    explicit CGImageGuard(const QImage& image)
        : pixels_(image.width(), image.height(), QImage::Format_RGB32)
    {
        for (int y = 0; y < pixels_.height(); ++y)
            copyOpaque(reinterpret_cast<const std::uint32_t*>(image.constScanLine(y)),
                       reinterpret_cast<std::uint32_t*>(pixels_.scanLine(y)), image.width());
    }

    std::uint8_t* getPixels() override { return pixels_.bits(); }
    const std::uint8_t* getPixels() const override { return pixels_.constBits(); }
    int getStride() const override { return pixels_.bytesPerLine(); }
    XY<int> getSize() const override { return {pixels_.width(), pixels_.height()}; }

private:
    // A screen's upper byte holds anything. In blocks of a fixed length, which compilers turn into
    // wide instructions without being told to.
    static void copyOpaque(const std::uint32_t* __restrict from, std::uint32_t* __restrict to,
                           int count)
    {
        constexpr int kBlock = 16;
        constexpr std::uint32_t kOpaque = 0xFF000000u;
        int i = 0;
        for (; i + kBlock <= count; i += kBlock)
            for (int k = 0; k < kBlock; ++k)
                to[i + k] = from[i + k] | kOpaque;
        for (; i < count; ++i)
            to[i] = from[i] | kOpaque;
    }

    QImage pixels_;
};

CGImageWrapper::CGImageWrapper(const QImage& image)
    : image_(image), size_(image.width(), image.height())
{
}

Tq::Ptr<iPixelGuard> CGImageWrapper::lock() const
{
    return Tq::Ptr<iPixelGuard>(new CGImageGuard(image_));
}

Tq::Ptr<iGraphicPrimitivesRenderer> CGImageWrapper::getPrimitivesRenderer(bool)
{
    return {};
}

Tq::Ptr<iImage> CGImageWrapper::createCompatibleImage(const XY<int>&) const
{
    return {};
}
