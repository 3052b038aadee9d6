#include "OS/Mac/Media/CGImageWrapper.h"

#include <OS/Painting/iPixelGuard.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

class CGImageWrapper::CGImageGuard final : public iPixelGuard
{
public:
    explicit CGImageGuard(const QImage& image) : pixels_(image.copy()) {}

    std::uint8_t* getPixels() override { return pixels_.bits(); }
    const std::uint8_t* getPixels() const override { return pixels_.constBits(); }
    int getStride() const override { return pixels_.bytesPerLine(); }
    XY<int> getSize() const override { return {pixels_.width(), pixels_.height()}; }

private:
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
