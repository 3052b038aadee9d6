#include "Drawing/PictureScaler.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace Vantor {

namespace {

constexpr std::size_t kChannels = 4;

/// How one target pixel is made of a run of source pixels, along one axis.
struct Taps
{
    int first = 0;
    std::vector<float> weights; ///< their sum is 1
};

Taps averageTaps(double from, double to, int limit)
{
    Taps taps;
    taps.first = std::clamp(static_cast<int>(from), 0, limit - 1);
    for (int i = taps.first; i < limit && i < to; ++i) {
        const double covered = std::min<double>(i + 1, to) - std::max<double>(i, from);
        taps.weights.push_back(static_cast<float>(std::max(covered, 0.0) / (to - from)));
    }
    return taps;
}

Taps interpolationTaps(double centre, int low, int limit)
{
    const double at = std::clamp(centre - 0.5, static_cast<double>(low), limit - 1.0);
    const int first = static_cast<int>(at);
    const auto part = static_cast<float>(at - first);
    Taps taps;
    taps.first = first;
    taps.weights.push_back(1.0f - part);
    if (first + 1 < limit)
        taps.weights.push_back(part);
    else
        taps.weights[0] = 1.0f;
    return taps;
}

std::vector<Taps> tapsFor(int from, int to, int targetLength)
{
    std::vector<Taps> all;
    const double ratio = static_cast<double>(to - from) / targetLength;
    for (int i = 0; i < targetLength; ++i)
        all.push_back(ratio >= 1.0 ? averageTaps(from + i * ratio, from + (i + 1) * ratio, to)
                                   : interpolationTaps(from + (i + 0.5) * ratio, from, to));
    return all;
}

/// What a source's fourth byte means.
enum class Alpha
{
    eOpaque,
    eStraight,
    ePremultiplied
};

Alpha alphaOf(const iHostImage& image)
{
    if (image.getBitsPerPixel() != 32)
        return Alpha::eOpaque;
    return image.isAlphaPreMultiplied() ? Alpha::ePremultiplied : Alpha::eStraight;
}

/// Adds up one target pixel of a row from source pixels.
void gather(const std::uint8_t* row, const Taps& taps, Alpha alpha, float* sum)
{
    std::fill_n(sum, kChannels, 0.0f);
    const std::uint8_t* pixel = row + static_cast<std::size_t>(taps.first) * kChannels;
    for (const float weight : taps.weights) {
        const float opacity = alpha == Alpha::eOpaque ? 255.0f : pixel[3];
        const float colour = alpha == Alpha::eStraight ? weight * opacity / 255.0f : weight;
        for (std::size_t c = 0; c < 3; ++c)
            sum[c] += static_cast<float>(pixel[c]) * colour;
        sum[3] += opacity * weight;
        pixel += kChannels;
    }
}

} // namespace

bool scalePicture(const Tq::Ptr<iHostImage>& source, const Tq::Rectangle<int>& part,
                  const Tq::Ptr<iHostImage>& target)
{
    if (!source || !target)
        return false;
    const Tq::Ptr<iPixelGuard> from = source->lock();
    const Tq::Ptr<iPixelGuard> to = target->lock();
    if (!from || !to)
        return false;
    const XY<int> sourceSize = from->getSize();
    const Tq::Rectangle<int> area = part.intersection({0, 0, sourceSize.x, sourceSize.y});
    if (!area.hasArea() || from->getStride() < sourceSize.x * static_cast<int>(kChannels))
        return false;

    const XY<int> size = to->getSize();
    const Alpha alpha = alphaOf(*source);
    const std::vector<Taps> columns = tapsFor(area.left, area.right, size.x);
    const std::vector<Taps> rows = tapsFor(area.top, area.bottom, size.y);
    const std::size_t rowLength = static_cast<std::size_t>(size.x) * kChannels;

    // Rows are narrowed once each and added to the target rows they cover; neighbours share at most
    // two.
    std::vector<float> narrowed[2] = {std::vector<float>(rowLength), std::vector<float>(rowLength)};
    int held[2] = {-1, -1};
    const auto narrowedRow = [&](int y) -> const float* {
        const std::size_t slot = static_cast<std::size_t>(y & 1);
        if (held[slot] != y) {
            const std::uint8_t* row =
                from->getPixels() + static_cast<std::ptrdiff_t>(y) * from->getStride();
            for (std::size_t x = 0; x < columns.size(); ++x)
                gather(row, columns[x], alpha, &narrowed[slot][x * kChannels]);
            held[slot] = y;
        }
        return narrowed[slot].data();
    };
    std::vector<float> sum(rowLength);
    for (int y = 0; y < size.y; ++y) {
        std::fill(sum.begin(), sum.end(), 0.5f);
        const Taps& taps = rows[static_cast<std::size_t>(y)];
        for (std::size_t i = 0; i < taps.weights.size(); ++i) {
            const float* row = narrowedRow(taps.first + static_cast<int>(i));
            const float weight = taps.weights[i];
            for (std::size_t x = 0; x < rowLength; ++x)
                sum[x] += row[x] * weight;
        }
        std::uint8_t* out = to->getPixels() + static_cast<std::ptrdiff_t>(y) * to->getStride();
        for (std::size_t x = 0; x < rowLength; ++x)
            out[x] = static_cast<std::uint8_t>(std::min(sum[x], 255.0f));
    }
    return true;
}

Tq::Rectangle<int> partOfShape(const XY<int>& picture, const XY<int>& shape)
{
    if (picture.x <= 0 || picture.y <= 0 || shape.x <= 0 || shape.y <= 0)
        return {};
    const double ratio = static_cast<double>(shape.x) / shape.y;
    const double width = std::min<double>(picture.x, picture.y * ratio);
    const double height = std::min<double>(picture.y, picture.x / ratio);
    const int w = std::max(1, static_cast<int>(std::lround(width)));
    const int h = std::max(1, static_cast<int>(std::lround(height)));
    const int left = (picture.x - w) / 2;
    const int top = (picture.y - h) / 2;
    return {left, top, left + w, top + h};
}

Tq::Rectangle<int> fitInto(const XY<int>& picture, const Tq::Rectangle<int>& room)
{
    Tq::Rectangle<int> inner = partOfShape({room.width(), room.height()}, picture);
    // A hair's breadth left over is rounding: no border is worth that.
    constexpr int kHair = 2;
    if (room.width() - inner.width() <= kHair) {
        inner.left = 0;
        inner.right = room.width();
    }
    if (room.height() - inner.height() <= kHair) {
        inner.top = 0;
        inner.bottom = room.height();
    }
    return inner.translated(room.left, room.top);
}

} // namespace Vantor
