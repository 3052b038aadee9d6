#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace GLDrawing {

/// Whole pixels; the right and the bottom edge lie outside.
struct Box
{
    int left = 0, top = 0, right = 0, bottom = 0;

    bool isEmpty() const { return left >= right || top >= bottom; }
    Box intersected(const Box& other) const
    {
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }
    friend bool operator==(const Box&, const Box&) = default;
};

/// The pixel edge nearest to an edge between pixels, halves upwards, as the toolkit rounds them.
/// Far outside of any target it is cut.
inline int nearestEdge(double edge)
{
    constexpr double kFar = 1 << 28;
    return static_cast<int>(std::floor(std::clamp(edge, -kFar, kFar) + 0.5));
}

/// What is drawn on: a part of a framebuffer, seen with its first row on top.
struct DrawingTarget
{
    double ratio = 1.0; ///< pixels for each pixel of a description, both ways
    int left = 0;       ///< the viewport in GL's framebuffer, from its bottom
    int bottom = 0;
    int width = 0; ///< pixels
    int height = 0;
    bool firstRowAtBottom = false; ///< the first row is GL's bottom one: a texture's
    Box bounds;                    ///< of the target in the viewport: nothing outside is drawn

    bool fillsViewport() const { return bounds == Box{0, 0, width, height}; }

    /// Factors and offsets that turn places into GL's clip space: x, y, then x, y.
    std::array<float, 4> toClip() const
    {
        const auto factor = [](int size) { return static_cast<float>(2.0 / std::max(size, 1)); };
        const float y = firstRowAtBottom ? factor(height) : -factor(height);
        return {factor(width), y, -1.0f, firstRowAtBottom ? -1.0f : 1.0f};
    }

    /// A box in GL's framebuffer: left, bottom, width, height.
    std::array<int, 4> toScissor(const Box& box) const
    {
        const int lowest = firstRowAtBottom ? box.top : height - box.bottom;
        return {left + box.left, bottom + lowest, std::max(box.right - box.left, 0),
                std::max(box.bottom - box.top, 0)};
    }
};

} // namespace GLDrawing
