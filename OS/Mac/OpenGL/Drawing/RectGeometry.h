#pragma once

#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"

#include <OS/Primitives/Rectangle.h>

/// Quads for rectangles. Pure.
namespace GLDrawing {

/// An area to fill, fading from one colour to another between two heights; all in pixels of the
/// target, whole or not.
struct Fill
{
    double left, top, right, bottom;
    Colour topColour, bottomColour; ///< at the heights below
    double fadeTop, fadeBottom;     ///< bottom not below top: all of it has the top colour

    Colour colourAt(double y) const;
};

/// @param rectangle starts at its left and top, with its width and height
/// @param visible what can be seen, pixels: far outside the rectangle is cut to it, with the
/// colours that it has there
Fill makeFill(const Tq::Rectangle<int>& rectangle, Colour top, Colour bottom, double ratio,
              const Box& visible);
/// At a fractional ratio a target's size is rounded, and what fills it ends half a pixel before or
/// behind its last one: such a fill ends with the target, or windows would have seams.
void endWithTarget(Fill& fill, const Box& target);

/// Its edges moved to the nearest pixel edges; empty when none lie between.
Box hardEdges(const Fill& fill);

/// A quad over whole pixels. Nothing when the box is empty.
void addBox(std::vector<FillVertex>& quads, const Box& box, Colour top, Colour bottom);
inline void addBox(std::vector<FillVertex>& quads, const Box& box, Colour colour)
{
    addBox(quads, box, colour, colour);
}

/// One quad on whole pixels.
void addHardFill(std::vector<FillVertex>& quads, const Fill& fill);
/// Up to nine: pixels at the edges get the share of the colour that the area has of them.
void addSoftFill(std::vector<FillVertex>& quads, const Fill& fill);

} // namespace GLDrawing
