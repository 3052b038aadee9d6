#pragma once

/// A point or a size in three dimensions.
template <class T>
class XYZ
{
public:
    XYZ() = default;
    XYZ(T x_, T y_, T z_) : x(x_), y(y_), z(z_) {}
    XYZ(const XYZ&) = default;
    XYZ& operator=(const XYZ&) = default;
    virtual ~XYZ() = default;

    friend bool operator==(const XYZ& a, const XYZ& b)
    {
        return a.x == b.x && a.y == b.y && a.z == b.z;
    }

    T x = 0;
    T y = 0;
    T z = 0;
};
