#pragma once

#include <algorithm>
#include <cstdint>

/// Colours as luma and colour difference: ITU-R BT.709 in video range, 16 to 235 and 16 to 240 in 8
/// bits. Sixteen-bit values are the same scale with eight more bits behind the point.
///
/// The work is done in whole numbers with sixteen bits behind the point; the coefficients of each
/// difference add up to nothing, so that greys have none.
namespace VideoColour {

/// Luma and the two differences with sixteen bits behind the point; they add up linearly.
struct Sum
{
    std::int32_t y = 0, cb = 0, cr = 0;
};

constexpr Sum fromRGB(int r, int g, int b)
{
    return {(16 << 16) + 11966 * r + 40254 * g + 4064 * b,
            (128 << 16) - 6596 * r - 22188 * g + 28784 * b,
            (128 << 16) + 28784 * r - 26145 * g - 2639 * b};
}

constexpr std::uint8_t toByte(std::int32_t value)
{
    return static_cast<std::uint8_t>((value + 0x8000) >> 16);
}
constexpr std::uint16_t toShort(std::int32_t value)
{
    return static_cast<std::uint16_t>((value + 0x80) >> 8);
}

/// An opaque pixel, 0xFFRRGGBB, from values with eight bits behind the point. What lies outside the
/// range is cut.
constexpr std::uint32_t toWord(int y, int cb, int cr)
{
    const std::int64_t luma = 76309ll * (y - (16 << 8));
    const std::int64_t blueness = cb - (128 << 8), redness = cr - (128 << 8);
    const auto channel = [](std::int64_t value) {
        return static_cast<std::uint32_t>(
            std::clamp<std::int64_t>((value + (1 << 23)) >> 24, 0, 255));
    };
    return 0xFF000000u | channel(luma + 117489 * redness) << 16 |
           channel(luma - 13975 * blueness - 34925 * redness) << 8 |
           channel(luma + 138438 * blueness);
}

} // namespace VideoColour
