#pragma once

#include <OS/Primitives/XY.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <type_traits>

namespace Tq {

/// A rectangle in pixels. The right and the bottom edge lie outside the area.
template <class T>
struct Rectangle
{
    T left = 0;
    T top = 0;
    T right = 0;
    T bottom = 0;

    /// What no T can hold becomes the largest T.
    T width() const { return distance(left, right); }
    T height() const { return distance(top, bottom); }
    XY<T> topLeft() const { return XY<T>(left, top); }
    XY<T> size() const { return XY<T>(width(), height()); }
    bool hasArea() const { return width() != 0 && height() != 0; }
    /// Whether left <= x < right and top <= y < bottom.
    bool contains(const XY<T>& p) const
    {
        return left <= p.x && p.x < right && top <= p.y && p.y < bottom;
    }

    /// What two rectangles share: all zero when they lie apart. Rectangles that only touch share a
    /// strip of zero width or height, deliberately: it is not empty, but has no area.
    Rectangle intersection(const Rectangle& other) const
    {
        if (left > other.right || top > other.bottom || right < other.left || bottom < other.top)
            return {};
        return {std::max(left, other.left), std::max(top, other.top), std::min(right, other.right),
                std::min(bottom, other.bottom)};
    }

    /// The smallest rectangle that holds both corners of both.
    Rectangle united(const Rectangle& other) const
    {
        return {std::min({left, right, other.left, other.right}),
                std::min({top, bottom, other.top, other.bottom}),
                std::max({left, right, other.left, other.right}),
                std::max({top, bottom, other.top, other.bottom})};
    }

    Rectangle translated(T dx, T dy) const
    {
        return {left + dx, top + dy, right + dx, bottom + dy};
    }

    friend bool operator==(const Rectangle& a, const Rectangle& b)
    {
        return a.left == b.left && a.top == b.top && a.right == b.right && a.bottom == b.bottom;
    }

private:
    static T distance(T a, T b)
    {
        if constexpr (std::is_integral_v<T>) {
            const long long apart = std::abs(static_cast<long long>(b) - a);
            return static_cast<T>(std::min<long long>(apart, std::numeric_limits<T>::max()));
        } else {
            return std::abs(b - a);
        }
    }
};

} // namespace Tq
