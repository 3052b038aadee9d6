#pragma once

#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"

#include <OS/Primitives/EllipseDescription.h>

/// Quads for ellipses, pies and arcs. Pure.
namespace GLDrawing {

/// The box of an ellipse, inset by half the outline, in pixels of the target.
struct Ellipse
{
    double x, y;      ///< centre
    double halfWidth; ///< of the box
    double halfHeight;
    double outline; ///< width

    Ellipse(const EllipseDescription& desc, double ratio);
};

/// The part of an ellipse that an angle covers, in degrees counter-clockwise from three o'clock.
struct Span
{
    int from = 0;
    int degrees = 360;

    explicit Span(const EllipseDescription& desc);
    /// Nothing is left out.
    bool isWhole() const { return degrees >= 360; }
};

/// What of an ellipse a quad draws.
enum class EllipsePart
{
    eFill,
    eOutline,
    eBoth ///< exact for an opaque outline
};

/// @param visible what can be seen, pixels
void addEllipse(std::vector<EllipseVertex>& quads, const Ellipse& ellipse, EllipsePart part,
                Colour fill, Colour line, const Box& visible);
/// A pie, or an arc with square ends. @param part not eBoth
void addPie(std::vector<PieVertex>& quads, const Ellipse& ellipse, EllipsePart part,
            const Span& span, Colour colour, const Box& visible);

} // namespace GLDrawing
