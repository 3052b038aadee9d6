// Curves of LineGeometry.h.
#include "OS/Mac/OpenGL/Drawing/LineGeometry.h"

namespace GLDrawing {

namespace {

constexpr int kMostPieces = 64;
constexpr double kTolerance = 0.25; // pixels that a piece may be off the curve

Point pointAt(const Point (&p)[4], double t)
{
    const double s = 1 - t;
    const double a = s * s * s, b = 3 * s * s * t, c = 3 * s * t * t, d = t * t * t;
    return {a * p[0].x + b * p[1].x + c * p[2].x + d * p[3].x,
            a * p[0].y + b * p[1].y + c * p[2].y + d * p[3].y};
}

Point derivativeAt(const Point (&p)[4], double t)
{
    const double s = 1 - t;
    const double a = s * s, b = 2 * s * t, c = t * t;
    return {3 * (a * (p[1].x - p[0].x) + b * (p[2].x - p[1].x) + c * (p[3].x - p[2].x)),
            3 * (a * (p[1].y - p[0].y) + b * (p[2].y - p[1].y) + c * (p[3].y - p[2].y))};
}

Point secondDerivativeAt(const Point (&p)[4], double t)
{
    const double s = 1 - t;
    return {6 * (s * (p[0].x - 2 * p[1].x + p[2].x) + t * (p[1].x - 2 * p[2].x + p[3].x)),
            6 * (s * (p[0].y - 2 * p[1].y + p[2].y) + t * (p[1].y - 2 * p[2].y + p[3].y))};
}

// How long a piece may be where the curve bends as it does at t. Only what pulls it aside counts:
// a change of speed does not take it off a straight line.
double stepAt(const Point (&p)[4], double t)
{
    const Point speed = derivativeAt(p, t), pull = secondDerivativeAt(p, t);
    const double length = std::hypot(speed.x, speed.y);
    const double aside = length > 1e-6 ? std::abs(speed.x * pull.y - speed.y * pull.x) / length
                                       : std::hypot(pull.x, pull.y);
    return std::sqrt(8 * kTolerance / std::max(aside, 1e-9));
}

// The straight pieces of a curve: points that differ, and how far along the curve they lie.
struct Strip
{
    Point points[kMostPieces + 1];
    double along[kMostPieces + 1];
    int count = 1;

    explicit Strip(Point start)
    {
        points[0] = start;
        along[0] = 0;
    }
    void add(Point point)
    {
        const Point& last = points[count - 1];
        const double step = std::hypot(point.x - last.x, point.y - last.y);
        if (step < 1e-6)
            return;
        points[count] = point;
        along[count] = along[count - 1] + step;
        ++count;
    }
    // The direction of the piece that starts at a point, of length 1.
    Point direction(int piece) const
    {
        const double length = along[piece + 1] - along[piece];
        return {(points[piece + 1].x - points[piece].x) / length,
                (points[piece + 1].y - points[piece].y) / length};
    }
    double length() const { return along[count - 1]; }
};

// Where two pieces meet, the quads share the edge that halves the angle. At a turn back there is
// none: each piece ends square.
struct Joint
{
    Point before, after; // directions, of length 1; the same unless the curve turns back
    double stretch = 1;  // of the shared edge, so that the sides stay parallel
};

Joint jointAt(const Strip& strip, int point)
{
    const int lastPiece = strip.count - 2;
    const Point in = strip.direction(std::clamp(point - 1, 0, lastPiece));
    const Point out = strip.direction(std::clamp(point, 0, lastPiece));
    const double cosine = in.x * out.x + in.y * out.y;
    if (cosine < 0)
        return {in, out};
    Point half{in.x + out.x, in.y + out.y};
    const double length = std::hypot(half.x, half.y);
    half = {half.x / length, half.y / length};
    return {half, half, 2 / length};
}

class CurveQuads
{
public:
    CurveQuads(std::vector<LineVertex>& quads, const Strip& strip, const Stroke& stroke,
               Colour colour)
        : quads_(quads), strip_(strip), stroke_(stroke), colour_(colour),
          halfLength_(strip.length() / 2 + stroke.width / 2)
    {
    }

    void add(int piece, const Joint& start, const Joint& end)
    {
        const double beyond = stroke_.width / 2 + 0.5; // the square end, and half a soft pixel
        Side a = side(piece, start.after, start.stretch);
        Side b = side(piece + 1, end.before, end.stretch);
        if (piece == 0)
            a.move(-beyond);
        if (piece == strip_.count - 2)
            b.move(beyond);
        const double half = stroke_.isHairline ? 0.5 : stroke_.width / 2;
        const auto vertex = [&](const Side& s, int sign) {
            LineVertex v{static_cast<float>(s.place.x - sign * s.reach * s.direction.y),
                         static_cast<float>(s.place.y + sign * s.reach * s.direction.x),
                         0,
                         0,
                         0,
                         0,
                         colour_};
            setDistances(v, sign * (half + 0.5), s.along - strip_.length() / 2, half, halfLength_,
                         stroke_.isSoft);
            quads_.push_back(v);
        };
        vertex(a, -1);
        vertex(b, -1);
        vertex(b, 1);
        vertex(a, 1);
    }

private:
    // An end of a quad, across the curve.
    struct Side
    {
        Point place, direction;
        double along;
        double reach; // to both sides, pixels

        void move(double distance)
        {
            place = {place.x + distance * direction.x, place.y + distance * direction.y};
            along += distance;
        }
    };

    Side side(int point, Point direction, double stretch) const
    {
        const double longer = std::max(std::abs(direction.x), std::abs(direction.y));
        Point place = strip_.points[point];
        double reach = (stroke_.width / 2 + 0.5) * stretch;
        if (stroke_.isHairline) {
            reach = stretch * longer; // a pixel along the other axis, and its soft edges
            if (!stroke_.isSoft)
                (std::abs(direction.x) >= std::abs(direction.y) ? place.x : place.y) += 0.5;
        }
        return {place, direction, strip_.along[point], reach};
    }

    std::vector<LineVertex>& quads_;
    const Strip& strip_;
    const Stroke& stroke_;
    Colour colour_;
    double halfLength_;
};

// Where the bend changes within a piece, the sharper end decides.
void flatten(const Point (&points)[4], Strip& strip)
{
    constexpr double kShortest = 1.0 / kMostPieces, kLongest = 0.25;
    double t = 0;
    while (t < 1 - kShortest / 2) {
        double step = std::clamp(stepAt(points, t), kShortest, kLongest);
        step = std::max(std::min(step, stepAt(points, std::min(t + step, 1.0))), kShortest);
        t = t + step > 1 - kShortest / 2 ? 1.0 : t + step;
        strip.add(pointAt(points, t));
    }
}

bool touches(const Strip& strip, int piece, const Box& visible, double margin)
{
    Point from = strip.points[piece], to = strip.points[piece + 1];
    return cutLine(from, to, visible, margin);
}

} // namespace

void addCurve(std::vector<LineVertex>& quads, const Point (&points)[4], const Stroke& stroke,
              Colour colour, const Box& visible)
{
    const double margin = 2 * stroke.width + 4;
    const auto [left, right] = std::minmax({points[0].x, points[1].x, points[2].x, points[3].x});
    const auto [top, bottom] = std::minmax({points[0].y, points[1].y, points[2].y, points[3].y});
    if (right < visible.left - margin || left > visible.right + margin ||
        bottom < visible.top - margin || top > visible.bottom + margin)
        return;

    Strip strip(points[0]);
    flatten(points, strip);
    if (strip.count < 2)
        return;
    CurveQuads curve(quads, strip, stroke, colour);
    Joint start = jointAt(strip, 0);
    for (int piece = 0; piece + 1 < strip.count; ++piece) {
        const Joint end = jointAt(strip, piece + 1);
        if (touches(strip, piece, visible, margin))
            curve.add(piece, start, end);
        start = end;
    }
}

} // namespace GLDrawing
