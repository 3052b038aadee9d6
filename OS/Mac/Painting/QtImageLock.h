#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iPixelGuard.h>

#include <QImage>

class QtImage;

/// Access to a QtImage's pixels; shares both, so that neither goes while the guard lives.
class QtImageLock final : public iPixelGuard
{
public:
    /// @param owner has pixels
    explicit QtImageLock(const Tq::Ptr<const QtImage>& owner);

    std::uint8_t* getPixels() override;
    const std::uint8_t* getPixels() const override;
    int getStride() const override { return image_->bytesPerLine(); }
    XY<int> getSize() const override { return {image_->width(), image_->height()}; }

private:
    Tq::Ptr<const QtImage> owner_;
    Tq::Ptr<QImage> image_;
};
