#include "OS/Mac/OpenGL/Drawing/LineGeometry.h"

namespace GLDrawing {

namespace {

double lengthOf(Point a, Point b)
{
    return std::hypot(b.x - a.x, b.y - a.y);
}

// Along the longer axis.
double stepsOf(Point a, Point b)
{
    return std::max(std::abs(b.x - a.x), std::abs(b.y - a.y));
}

// A vertex of a stroke, its distances in pixels.
struct Corner
{
    Point place;
    double across, along;
};

void addQuad(std::vector<LineVertex>& quads, const Corner (&corners)[4], double halfWidth,
             double halfLength, bool soft, Colour colour)
{
    for (const Corner& corner : corners) {
        LineVertex vertex{static_cast<float>(corner.place.x),
                          static_cast<float>(corner.place.y),
                          0,
                          0,
                          0,
                          0,
                          colour};
        setDistances(vertex, corner.across, corner.along, halfWidth, halfLength, soft);
        quads.push_back(vertex);
    }
}

// The distances around a stroke of one width: how far its quads reach, and what that counts. Steps
// along the longer axis count for a hairline, so that it is a pixel wide along the other one.
struct Outline
{
    double half;  // of the width, as counted
    double reach; // from the centre line to a quad's edge, pixels
    double count; // the same, as counted

    // @param slope pixels of length for each step along the longer axis: 1 to the root of 2
    Outline(const Stroke& stroke, double slope)
    {
        half = stroke.isHairline ? 0.5 : stroke.width / 2;
        count = half + 0.5;
        reach = stroke.isHairline ? count / slope : count;
    }
};

// Hard hairlines take the pixel whose middle is next along the longer axis.
Point hairlineShift(Point along, const Stroke& stroke)
{
    if (!stroke.isHairline || stroke.isSoft)
        return {0, 0};
    return std::abs(along.x) >= std::abs(along.y) ? Point{0.5, 0} : Point{0, 0.5};
}

} // namespace

void setDistances(LineVertex& vertex, double across, double along, double halfWidth,
                  double halfLength, bool soft)
{
    const double steepness = soft ? 1.0 : static_cast<double>(kHardEdge);
    const auto inside = [steepness](double distance) {
        return static_cast<float>(distance * steepness + 0.5);
    };
    vertex.left = inside(halfWidth + across);
    vertex.right = inside(halfWidth - across);
    vertex.start = inside(halfLength + along);
    vertex.end = inside(halfLength - along);
}

Stroke Stroke::of(int width, double ratio, bool soft)
{
    const double pixels = width < 1 ? 1.0 : width * ratio;
    return {pixels, pixels <= 1.0, soft};
}

Box axisAlignedLine(Point from, Point to, const Stroke& stroke)
{
    const auto [left, right] = std::minmax(from.x, to.x);
    const auto [top, bottom] = std::minmax(from.y, to.y);
    if (stroke.isHairline) {
        const auto pixel = [](double place) { return nearestEdge(std::floor(place)); };
        return {pixel(left), pixel(top), pixel(right) + 1, pixel(bottom) + 1};
    }
    const double half = stroke.width / 2;
    return {nearestEdge(left - half), nearestEdge(top - half), nearestEdge(right + half),
            nearestEdge(bottom + half)};
}

void addBox(std::vector<LineVertex>& quads, const Box& box, Colour colour)
{
    if (box.isEmpty())
        return;
    constexpr float kInside = 1e3f;
    const auto vertex = [&](int x, int y) {
        quads.push_back({static_cast<float>(x), static_cast<float>(y), kInside, kInside, kInside,
                         kInside, colour});
    };
    vertex(box.left, box.top);
    vertex(box.right, box.top);
    vertex(box.right, box.bottom);
    vertex(box.left, box.bottom);
}

bool cutLine(Point& from, Point& to, const Box& area, double margin)
{
    const double dx = to.x - from.x, dy = to.y - from.y;
    double first = 0.0, last = 1.0;
    // The part of the line on the inner side of one edge: distance + t * change >= 0.
    const auto cut = [&](double distance, double change) {
        if (change == 0.0)
            return distance >= 0.0;
        const double t = -distance / change;
        (change > 0.0 ? first : last) = change > 0.0 ? std::max(first, t) : std::min(last, t);
        return first <= last;
    };
    if (!cut(from.x - (area.left - margin), dx) || !cut(area.right + margin - from.x, -dx) ||
        !cut(from.y - (area.top - margin), dy) || !cut(area.bottom + margin - from.y, -dy))
        return false;
    const Point start = from;
    if (last < 1.0)
        to = {start.x + last * dx, start.y + last * dy};
    if (first > 0.0)
        from = {start.x + first * dx, start.y + first * dy};
    return true;
}

void addLine(std::vector<LineVertex>& quads, Point from, Point to, const Stroke& stroke,
             Colour colour, const Box& visible)
{
    if (!cutLine(from, to, visible, 2 * stroke.width + 4))
        return;
    const double length = lengthOf(from, to);
    const Point along =
        length > 0 ? Point{(to.x - from.x) / length, (to.y - from.y) / length} : Point{1, 0};
    const double slope = length > 0 ? length / stepsOf(from, to) : 1.0;
    const Outline outline(stroke, slope);
    const double cap = stroke.isHairline ? 0.5 * slope : stroke.width / 2;
    const Point shift = hairlineShift(along, stroke);
    const Point middle{(from.x + to.x) / 2 + shift.x, (from.y + to.y) / 2 + shift.y};

    const double halfLength = length / 2 + cap;
    const double reach = halfLength + 0.5; // half a pixel for the soft edge
    const auto corner = [&](int end, int side) {
        const double a = end * reach, b = side * outline.reach;
        return Corner{{middle.x + a * along.x - b * along.y, middle.y + a * along.y + b * along.x},
                      side * outline.count,
                      a};
    };
    const Corner corners[4] = {corner(-1, -1), corner(1, -1), corner(1, 1), corner(-1, 1)};
    addQuad(quads, corners, outline.half, halfLength, stroke.isSoft, colour);
}

namespace {

// Single pixels of a hairline: a pixel for each step along the longer axis.
void addPixelDots(std::vector<LineVertex>& quads, Point from, Point to, double period,
                  Colour colour, const Box& visible)
{
    const double steps = std::floor(stepsOf(from, to));
    const Point step =
        steps > 0 ? Point{(to.x - from.x) / steps, (to.y - from.y) / steps} : Point{0, 0};
    Point first = from, last = to;
    if (!cutLine(first, last, visible, 2))
        return;
    const double skipped = std::floor(stepsOf(from, first) / period);
    const double end = std::min(steps, std::ceil(stepsOf(from, last)) + 1);
    for (double dot = skipped;; ++dot) {
        const double at = std::floor(dot * period);
        if (at > end)
            return;
        const int x = nearestEdge(std::floor(from.x + at * step.x));
        const int y = nearestEdge(std::floor(from.y + at * step.y));
        addBox(quads, {x, y, x + 1, y + 1}, colour);
    }
}

void addSquareDots(std::vector<LineVertex>& quads, Point from, Point to, double ratio,
                   double period, Colour colour, const Box& visible)
{
    const Stroke stroke{ratio, false, false};
    const double length = lengthOf(from, to);
    if (length <= 0)
        return addLine(quads, from, to, stroke, colour, visible);
    const Point along{(to.x - from.x) / length, (to.y - from.y) / length};
    Point first = from, last = to;
    if (!cutLine(first, last, visible, 2 * period * ratio))
        return;
    const auto at = [&](double distance) {
        return Point{from.x + distance * along.x, from.y + distance * along.y};
    };
    const bool axisAligned = along.x == 0 || along.y == 0;
    const double end = lengthOf(from, last);
    for (double dot = std::floor(lengthOf(from, first) / (period * ratio));; ++dot) {
        const double start = dot * period * ratio;
        if (start > end)
            return;
        const Point a = at(start), b = at(std::min(start + ratio, length));
        if (axisAligned)
            addBox(quads, axisAlignedLine(a, b, stroke), colour);
        else
            addLine(quads, a, b, stroke, colour, visible);
    }
}

} // namespace

void addDots(std::vector<LineVertex>& quads, Point from, Point to, double ratio, double gap,
             Colour colour, const Box& visible)
{
    const double period = 1.0 + std::max(gap, 0.0);
    if (ratio <= 1.0)
        addPixelDots(quads, from, to, period, colour, visible);
    else
        addSquareDots(quads, from, to, ratio, period, colour, visible);
}

} // namespace GLDrawing
