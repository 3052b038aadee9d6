#pragma once

/// A point or a size in pixels: x or width, y or height.
template <class T>
class XY
{
public:
    XY() = default;
    XY(T x_, T y_) : x(x_), y(y_) {}
    XY(const XY&) = default;
    XY& operator=(const XY&) = default;
    virtual ~XY() = default;

    friend bool operator==(const XY& a, const XY& b) { return a.x == b.x && a.y == b.y; }

    T x = 0;
    T y = 0;
};
