#pragma once

#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"

/// Quads for lines, dots and curves. Pure.
namespace GLDrawing {

struct Point
{
    double x, y;
};

/// How a line is drawn, in pixels of the target.
struct Stroke
{
    double width;
    /// One pixel or less: a pixel for each step along the longer axis, whatever the slope.
    bool isHairline;
    bool isSoft;

    /// @param width of a description; below 1 it is one pixel of the target
    static Stroke of(int width, double ratio, bool soft);
};

/// How many times steeper than a soft edge a hard one is.
constexpr float kHardEdge = 4096.0f;

/// Sets how far inside of its edges a vertex of a stroke is.
/// @param across pixels from the centre line @param along pixels from the middle
void setDistances(LineVertex& vertex, double across, double along, double halfWidth,
                  double halfLength, bool soft);

/// The pixels of a horizontal or vertical line: both ends count, and a wide one is as much longer
/// as it is wide.
Box axisAlignedLine(Point from, Point to, const Stroke& stroke);

/// Such a box for the program of slanted lines, to keep the order with those.
void addBox(std::vector<LineVertex>& quads, const Box& box, Colour colour);

/// Cuts a line to an area. @return false when it passes by
bool cutLine(Point& from, Point& to, const Box& area, double margin);

/// A quad with square ends. A line of no length is a square.
void addLine(std::vector<LineVertex>& quads, Point from, Point to, const Stroke& stroke,
             Colour colour, const Box& visible);

/// Every other pixel of a hairline, or, where pixels of descriptions are larger ones, squares of
/// theirs that reach half of themselves beyond both sides of each dot, as the toolkit's do.
///
/// @param gap between dots, pixels of descriptions
void addDots(std::vector<LineVertex>& quads, Point from, Point to, double ratio, double gap,
             Colour colour, const Box& visible);

/// A cubic as a strip of at most 64 quads, with square ends. The sharper it bends, the more.
void addCurve(std::vector<LineVertex>& quads, const Point (&points)[4], const Stroke& stroke,
              Colour colour, const Box& visible);

} // namespace GLDrawing
