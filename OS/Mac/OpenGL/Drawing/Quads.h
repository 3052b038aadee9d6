#pragma once

#include <OS/Primitives/NormalisedRGB.h>

#include <cstdint>
#include <vector>

/// What the drawing sends to GL: quads, four vertices each, in pixels of the target.
namespace GLDrawing {

/// Premultiplied; the bytes in memory are red, green, blue and alpha.
using Colour = std::uint32_t;

constexpr Colour kOpaqueBlack = 0xFF000000; // bytes 0, 0, 0, 255

constexpr std::uint32_t channel(Colour colour, int index)
{
    return colour >> (8 * index) & 0xFF;
}
constexpr bool isOpaque(Colour colour)
{
    return channel(colour, 3) == 0xFF;
}
/// Truncated to 8 bits first, then multiplied, as the toolkit's renderer does.
inline Colour premultiplied(const NormalisedRGB& colour, float alpha)
{
    const auto a = static_cast<std::uint32_t>(NormalisedRGB::toByte(alpha));
    const auto times = [a](float component) {
        return (static_cast<std::uint32_t>(NormalisedRGB::toByte(component)) * a + 127) / 255;
    };
    return times(colour.red) | times(colour.green) << 8 | times(colour.blue) << 16 | a << 24;
}
inline Colour premultiplied(const NormalisedRGB& colour)
{
    return premultiplied(colour, colour.alpha);
}

struct FillVertex
{
    float x, y;
    Colour colour;
};

/// A piece of a stroke: how far inside of its four edges a place is, in pixels, or many times that
/// for hard edges. Coverage is the least of them, and a half; the half is in here.
struct LineVertex
{
    float x, y;
    float left, right; // of the centre line
    float start, end;  // along it
    Colour colour;     // equal at all four
};

/// An ellipse, filled up to the inner edge and outlined from there to the outer one.
struct EllipseVertex
{
    float x, y;
    float px, py;         // from the centre, pixels
    float outerX, outerY; // one over the radius; equal at all four, as what follows
    float innerX, innerY; // negative where there is no inside
    Colour fill, line;
};

/// A part of one between two rays from the centre.
struct PieVertex
{
    EllipseVertex ellipse;
    float from, to; // pixels inside of each ray
    float side;     // pixels on the rays' side of the centre; far out where one ray is enough
};

struct ImageVertex
{
    float x, y;
    float u, v; // the image's pixels
};

/// An image drawn at another size: nothing outside of the source is sampled.
struct ScaledImageVertex
{
    float x, y;
    float u, v;
    float left, top, right, bottom; // centres of the outermost pixels; equal at all four
};

// Between two vertices of a quad, for cutting it.
inline float between(float a, float b, float t)
{
    return a + (b - a) * t;
}
inline Colour between(Colour a, Colour b, float t)
{
    if (a == b)
        return a;
    Colour result = 0;
    for (int i = 0; i < 4; ++i) {
        const float value =
            between(static_cast<float>(channel(a, i)), static_cast<float>(channel(b, i)), t);
        result |= static_cast<Colour>(value < 0.0f     ? 0.0f
                                      : value > 255.0f ? 255.0f
                                                       : value + 0.5f)
                  << (8 * i);
    }
    return result;
}
inline FillVertex between(const FillVertex& a, const FillVertex& b, float t)
{
    return {between(a.x, b.x, t), between(a.y, b.y, t), between(a.colour, b.colour, t)};
}
inline LineVertex between(const LineVertex& a, const LineVertex& b, float t)
{
    LineVertex v = a;
    v.x = between(a.x, b.x, t);
    v.y = between(a.y, b.y, t);
    v.left = between(a.left, b.left, t);
    v.right = between(a.right, b.right, t);
    v.start = between(a.start, b.start, t);
    v.end = between(a.end, b.end, t);
    return v;
}
inline EllipseVertex between(const EllipseVertex& a, const EllipseVertex& b, float t)
{
    EllipseVertex v = a;
    v.x = between(a.x, b.x, t);
    v.y = between(a.y, b.y, t);
    v.px = between(a.px, b.px, t);
    v.py = between(a.py, b.py, t);
    return v;
}
inline PieVertex between(const PieVertex& a, const PieVertex& b, float t)
{
    return {between(a.ellipse, b.ellipse, t), between(a.from, b.from, t), between(a.to, b.to, t),
            between(a.side, b.side, t)};
}
inline ImageVertex between(const ImageVertex& a, const ImageVertex& b, float t)
{
    return {between(a.x, b.x, t), between(a.y, b.y, t), between(a.u, b.u, t), between(a.v, b.v, t)};
}
inline ScaledImageVertex between(const ScaledImageVertex& a, const ScaledImageVertex& b, float t)
{
    ScaledImageVertex v = a;
    v.x = between(a.x, b.x, t);
    v.y = between(a.y, b.y, t);
    v.u = between(a.u, b.u, t);
    v.v = between(a.v, b.v, t);
    return v;
}

inline float& placeX(PieVertex& v)
{
    return v.ellipse.x;
}
inline float& placeY(PieVertex& v)
{
    return v.ellipse.y;
}
template <class V>
float& placeX(V& v)
{
    return v.x;
}
template <class V>
float& placeY(V& v)
{
    return v.y;
}

} // namespace GLDrawing
