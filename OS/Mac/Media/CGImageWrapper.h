#pragma once

#include <OS/Painting/iHostImage.h>

#include <QImage>

/// A picture of the screen: it can be locked, but not drawn on. Every guard has a copy of the
/// pixels of its own, opaque.
class CGImageWrapper final : public iHostImage
{
public:
    /// @param image in format RGB32, whose upper bytes may hold anything
    explicit CGImageWrapper(const QImage& image);

    XY<int> getSize() const override { return size_; }
    int getBitsPerPixel() const override { return image_.depth(); }
    bool isAlphaPreMultiplied() const override { return true; }
    Tq::Ptr<iPixelGuard> lock() const override;
    /// Always null.
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    /// Always null.
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const override;

private:
    class CGImageGuard;

    QImage image_;
    XY<int> size_;
};
