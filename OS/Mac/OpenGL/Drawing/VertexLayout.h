#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Drawing/Quads.h"

#include <cstddef>
#include <utility>

/// How each kind of vertex is handed to its program.
namespace GLDrawing {

/// Where the programs take their inputs.
constexpr std::pair<const char*, GLuint> kAttributeNames[] = {
    {"place", 0},      {"colour", 1},     {"inside", 2}, {"fromCentre", 1}, {"inverseRadii", 2},
    {"fillColour", 3}, {"lineColour", 4}, {"rays", 5},   {"source", 1},     {"limits", 2}};

struct Attribute
{
    GLuint location;
    GLint components; ///< floats, or the four bytes of a colour
    std::size_t offset;
    bool isColour = false;
};

template <class V>
struct VertexLayout;

template <>
struct VertexLayout<FillVertex>
{
    static constexpr Attribute kAttributes[] = {{0, 2, offsetof(FillVertex, x)},
                                                {1, 4, offsetof(FillVertex, colour), true}};
};
template <>
struct VertexLayout<LineVertex>
{
    static constexpr Attribute kAttributes[] = {{0, 2, offsetof(LineVertex, x)},
                                                {1, 4, offsetof(LineVertex, colour), true},
                                                {2, 4, offsetof(LineVertex, left)}};
};
template <>
struct VertexLayout<EllipseVertex>
{
    static constexpr Attribute kAttributes[] = {{0, 2, offsetof(EllipseVertex, x)},
                                                {1, 2, offsetof(EllipseVertex, px)},
                                                {2, 4, offsetof(EllipseVertex, outerX)},
                                                {3, 4, offsetof(EllipseVertex, fill), true},
                                                {4, 4, offsetof(EllipseVertex, line), true}};
};
template <>
struct VertexLayout<PieVertex>
{
    static_assert(offsetof(PieVertex, ellipse) == 0);
    static constexpr Attribute kAttributes[] = {
        {0, 2, offsetof(EllipseVertex, x)},          {1, 2, offsetof(EllipseVertex, px)},
        {2, 4, offsetof(EllipseVertex, outerX)},     {3, 4, offsetof(EllipseVertex, fill), true},
        {4, 4, offsetof(EllipseVertex, line), true}, {5, 3, offsetof(PieVertex, from)}};
};
template <>
struct VertexLayout<ImageVertex>
{
    static constexpr Attribute kAttributes[] = {{0, 2, offsetof(ImageVertex, x)},
                                                {1, 2, offsetof(ImageVertex, u)}};
};
template <>
struct VertexLayout<ScaledImageVertex>
{
    static constexpr Attribute kAttributes[] = {{0, 2, offsetof(ScaledImageVertex, x)},
                                                {1, 2, offsetof(ScaledImageVertex, u)},
                                                {2, 4, offsetof(ScaledImageVertex, left)}};
};

} // namespace GLDrawing
