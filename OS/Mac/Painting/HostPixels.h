#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>

#include <QImage>

/// The pixels of any host image as a toolkit image, not copied; they stay open while this lives.
class HostPixels
{
public:
    /// @param image null, an image without pixels, or one of other than 32-bit words gives a null
    /// image
    explicit HostPixels(const Tq::Ptr<iHostImage>& image);

    /// To be read only, while this object lives.
    const QImage& image() const { return view_; }

private:
    Tq::Ptr<iPixelGuard> guard_;
    QImage view_;
};
