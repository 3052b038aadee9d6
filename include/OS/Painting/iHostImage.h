#pragma once

#include <OS/Painting/iImage.h>
#include <OS/Painting/iPixelGuard.h>

/// An image in main memory, with 32-bit pixels of blue, green, red and alpha bytes in that order.
///
/// An image whose file could not be read has no pixels: its size is (0, 0), it cannot be locked,
/// and renderers skip it. Used by one thread at a time.
class OS_API iHostImage : public iImage
{
public:
    ~iHostImage() override = default;

    eLocation getLocation() const override { return eInHostMemory; }
    /// Bytes of a row without padding: width times bits per pixel / 8. The guard knows the real
    /// stride.
    virtual int getStride() const { return getSize().x * getBitsPerPixel() / 8; }
    virtual bool isAlphaPreMultiplied() const = 0;
    /// Opens the pixels for reading and writing. @return null when there are none
    virtual Tq::Ptr<iPixelGuard> lock() const = 0;
};
