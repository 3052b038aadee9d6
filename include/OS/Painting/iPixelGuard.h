#pragma once

#include <OS/Core/iObject.h>
#include <OS/Primitives/XY.h>

#include <cstdint>

/// Access to an image's pixels: they stay valid, and where they are, while the guard lives.
///
/// Holding a guard does not keep others from drawing; that is the holder's care.
class OS_API iPixelGuard : public iObject
{
public:
    /// The first byte of the top row.
    virtual std::uint8_t* getPixels() = 0;
    virtual const std::uint8_t* getPixels() const = 0;
    /// Bytes from one row to the next.
    virtual int getStride() const = 0;
    /// Physical size in pixels.
    virtual XY<int> getSize() const = 0;
};
