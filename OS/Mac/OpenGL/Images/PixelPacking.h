#pragma once

#include <OS/OpenGL/iGPUImage.h>

#include <cstddef>
#include <cstdint>

/// How one storage format of GPU images lays out a row of pixels, and the way there and back from
/// the host's pixels: 32-bit words 0xAARRGGBB, premultiplied.
///
/// A row of storage is a whole number of texels of four components. Three-component pixels stand
/// next to each other in it without a gap, four pixels in three texels; two pixels of 4:2:2 share
/// one texel. Where the width is no multiple of that, the row holds only what fits: the components
/// of the last pixel, or the last pixel itself, are dropped, and come back as black.
///
/// Formats without alpha keep the premultiplied colours, which is the picture over black, and come
/// back opaque. Video formats are as VideoColour says. Pure: no state, any thread.
class PixelPacking
{
public:
    /// @param format a value outside the enumeration is laid out as 32-bit pixels with alpha
    explicit PixelPacking(iGPUImage::eFormat format) : format_(format) {}

    /// Bits that a pixel takes in storage: 16, 24, 32, 48 or 64.
    int bitsPerPixel() const;
    /// Texels in a row of so many pixels; the divisions round towards zero, also below it.
    int texelsInRow(int width) const;
    /// Bytes in a row of so many pixels; 0 when no texel fits.
    std::size_t rowBytes(int width) const;
    /// Whether rows in storage are the host's words as they are.
    bool isPlain() const;

    /// Writes rowBytes(width) bytes.
    /// @param storage aligned as the format's components are
    void packRow(const std::uint32_t* words, int width, void* storage) const;
    /// Reads rowBytes(width) bytes. @param words receives `width` pixels
    void unpackRow(const void* storage, int width, std::uint32_t* words) const;

private:
    iGPUImage::eFormat format_;
};
