#pragma once

#include <OS/Effects/i3DEffect.h>

#include <cmath>

/// Places, directions and matrices in space; see i3DEffect.
namespace SpaceMath {

struct Vector
{
    double x = 0.0, y = 0.0, z = 0.0;

    friend Vector operator+(const Vector& a, const Vector& b)
    {
        return {a.x + b.x, a.y + b.y, a.z + b.z};
    }
    friend Vector operator-(const Vector& a, const Vector& b)
    {
        return {a.x - b.x, a.y - b.y, a.z - b.z};
    }
};

inline Vector vector(const XYZ<float>& from)
{
    return {static_cast<double>(from.x), static_cast<double>(from.y), static_cast<double>(from.z)};
}
inline double dot(const Vector& a, const Vector& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
inline Vector cross(const Vector& a, const Vector& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
/// Of length 1; zero stays as it is.
inline Vector unit(const Vector& a)
{
    const double length = std::sqrt(dot(a, a));
    return length > 0.0 ? Vector{a.x / length, a.y / length, a.z / length} : a;
}

struct Place
{
    double x = 0.0, y = 0.0, z = 0.0, w = 1.0;
};

inline Place transformed(const i3DEffect::Matrix& matrix, const Place& place)
{
    const auto row = [&](int i) {
        const float* const m = matrix.m_ + 4 * i;
        return static_cast<double>(m[0]) * place.x + static_cast<double>(m[1]) * place.y +
               static_cast<double>(m[2]) * place.z + static_cast<double>(m[3]) * place.w;
    };
    return {row(0), row(1), row(2), row(3)};
}

inline bool isFinite(const Place& place)
{
    return std::isfinite(place.x) && std::isfinite(place.y) && std::isfinite(place.z) &&
           std::isfinite(place.w);
}

} // namespace SpaceMath
