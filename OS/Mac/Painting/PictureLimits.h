#pragma once

#include <QImage>

#include <algorithm>
#include <cstdint>

/// What no picture may exceed, whoever asks for it: a header in a file or a caller.
namespace PictureLimits {

constexpr std::uint64_t kMaxPixels = 512ull * 1024 * 1024;

/// Whether both sides are at least 1 and the picture is not too large.
constexpr bool admits(std::uint64_t width, std::uint64_t height)
{
    constexpr std::uint64_t kMaxSide = 0x7FFFFFFF;
    return width >= 1 && height >= 1 && width <= kMaxSide && height <= kMaxSide &&
           width * height <= kMaxPixels;
}

/// Whether a file of this size can hold that many pixels: the densest packing in use spends a bit
/// on a row of a blank scan. A few bytes that promise gigabytes are refused before anything is
/// allocated.
constexpr bool plausible(std::uint64_t width, std::uint64_t height, std::uint64_t fileBytes)
{
    constexpr std::uint64_t kPixelsForEachByte = 64 * 1024;
    constexpr std::uint64_t kAlwaysAllowed = 16 * 1024 * 1024;
    return width * height <= kAlwaysAllowed + std::min(fileBytes, kMaxPixels) * kPixelsForEachByte;
}

/// Bytes of an open regular file; 0 when that cannot be told.
std::uint64_t fileBytes(int descriptor);

/// A picture of 32-bit pixels, all zero, in memory of its own with rows next to each other; null
/// when there is no memory. Fresh pages come zeroed, so nothing is written before the first real
/// pixel.
QImage allocate(int width, int height, QImage::Format format);

} // namespace PictureLimits
