#include "common/Icons.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace App {

namespace {

/// How far a point lies from a segment.
double distance(double x, double y, double ax, double ay, double bx, double by)
{
    const double dx = bx - ax;
    const double dy = by - ay;
    const double t = std::clamp(((x - ax) * dx + (y - ay) * dy) / (dx * dx + dy * dy), 0.0, 1.0);
    return std::hypot(x - ax - t * dx, y - ay - t * dy);
}

/// Whether a shape covers a point of the unit square, y down.
bool covers(Icons::Shape shape, double x, double y)
{
    switch (shape) {
    case Icons::Shape::eForwards:
        return std::abs(y - 0.5) <= 0.5 * (1.0 - x);
    case Icons::Shape::eBackwards:
        return std::abs(y - 0.5) <= 0.5 * x;
    case Icons::Shape::ePlayhead:
        return y < 0.55 || std::abs(x - 0.5) <= 0.5 * (1.0 - y) / 0.45;
    case Icons::Shape::eMissing: {
        const bool edge = std::max(std::abs(x - 0.5), std::abs(y - 0.5)) > 0.44;
        return edge || distance(x, y, 0.06, 0.94, 0.94, 0.06) < 0.04;
    }
    case Icons::Shape::eSearch:
        return std::abs(std::hypot(x - 0.4, y - 0.4) - 0.32) < 0.075 ||
               distance(x, y, 0.63, 0.63, 0.93, 0.93) < 0.085;
    }
    return false;
}

/// The covered part of one pixel, 0 to 1, from a grid of samples.
double coverage(Icons::Shape shape, int column, int row, const XY<int>& size)
{
    constexpr int kGrid = 6;
    int inside = 0;
    for (int j = 0; j < kGrid; ++j)
        for (int i = 0; i < kGrid; ++i)
            inside += covers(shape, (column + (i + 0.5) / kGrid) / size.x,
                             (row + (j + 0.5) / kGrid) / size.y);
    return static_cast<double>(inside) / (kGrid * kGrid);
}

} // namespace

Tq::Ptr<iHostImage> Icons::get(Shape shape, const Tq::Rectangle<int>& rect,
                               const NormalisedRGB& colour)
{
    const XY<int> size = resources_.scaled(rect).size();
    const int rgb[3] = {NormalisedRGB::toByte(colour.blue), NormalisedRGB::toByte(colour.green),
                        NormalisedRGB::toByte(colour.red)};
    Tq::Ptr<iHostImage>& image = made_[{shape, size.x, size.y, rgb[0], rgb[1], rgb[2]}];
    if (image)
        return image;
    image = resources_.blank(rect);
    const Tq::Ptr<iPixelGuard> guard = image ? image->lock() : nullptr;
    if (!guard)
        return image;
    const XY<int> pixels = guard->getSize();
    for (int y = 0; y < pixels.y; ++y) {
        std::uint8_t* out =
            guard->getPixels() + static_cast<std::ptrdiff_t>(y) * guard->getStride();
        for (int x = 0; x < pixels.x; ++x, out += 4) {
            const double covered = coverage(shape, x, y, pixels);
            for (int c = 0; c < 3; ++c)
                out[c] = static_cast<std::uint8_t>(rgb[c] * covered + 0.5);
            out[3] = static_cast<std::uint8_t>(255.0 * covered + 0.5);
        }
    }
    return image;
}

} // namespace App
