#include "OS/Mac/OpenGL/Drawing/EllipseGeometry.h"

namespace GLDrawing {

namespace {

constexpr double kSoftEdge = 0.5; // pixels beyond the outer edge

float f(double value)
{
    return static_cast<float>(value);
}

// One over a radius; a radius of nothing is a very small one.
float inverse(double radius)
{
    return f(1.0 / std::max(radius, 1e-3));
}

// The vertices around an ellipse, or around what can be seen of it; false when that is nothing.
bool place(EllipseVertex (&vertices)[4], const Ellipse& ellipse, double radiusX, double radiusY,
           const Box& visible)
{
    const double left = std::max(ellipse.x - radiusX - kSoftEdge, visible.left - 1.0);
    const double right = std::min(ellipse.x + radiusX + kSoftEdge, visible.right + 1.0);
    const double top = std::max(ellipse.y - radiusY - kSoftEdge, visible.top - 1.0);
    const double bottom = std::min(ellipse.y + radiusY + kSoftEdge, visible.bottom + 1.0);
    if (left >= right || top >= bottom)
        return false;
    const double xs[] = {left, right, right, left}, ys[] = {top, top, bottom, bottom};
    for (int i = 0; i < 4; ++i) {
        vertices[i].x = f(xs[i]);
        vertices[i].y = f(ys[i]);
        vertices[i].px = f(xs[i] - ellipse.x);
        vertices[i].py = f(ys[i] - ellipse.y);
    }
    return true;
}

bool build(EllipseVertex (&vertices)[4], const Ellipse& ellipse, EllipsePart part, Colour fill,
           Colour line, const Box& visible)
{
    const double grown = part == EllipsePart::eFill ? 0.0 : ellipse.outline / 2;
    const double radiusX = ellipse.halfWidth + grown, radiusY = ellipse.halfHeight + grown;
    if (radiusX <= 0 || radiusY <= 0 || !place(vertices, ellipse, radiusX, radiusY, visible))
        return false;
    const double innerX = ellipse.halfWidth - grown, innerY = ellipse.halfHeight - grown;
    const bool hasInside = part != EllipsePart::eFill && innerX > 0 && innerY > 0;
    for (EllipseVertex& v : vertices) {
        v.outerX = inverse(radiusX);
        v.outerY = inverse(radiusY);
        v.innerX = hasInside ? inverse(innerX) : -1.0f;
        v.innerY = hasInside ? inverse(innerY) : -1.0f;
        v.fill = part == EllipsePart::eOutline ? 0 : fill;
        v.line = part == EllipsePart::eFill ? fill : line;
    }
    return true;
}

// Pixels from a ray out of the centre, positive on its counter-clockwise side. The angle is one of
// the circle that the ellipse is made of.
struct Ray
{
    double x, y; // direction on the target, of length 1

    Ray(const Ellipse& ellipse, double degrees)
    {
        const double angle = degrees * (M_PI / 180.0);
        x = ellipse.halfWidth * std::cos(angle);
        y = -ellipse.halfHeight * std::sin(angle);
        const double length = std::max(std::hypot(x, y), 1e-9);
        x /= length;
        y /= length;
    }
    double distance(double px, double py) const { return px * y - py * x; }
    double along(double px, double py) const { return px * x + py * y; }
};

} // namespace

Ellipse::Ellipse(const EllipseDescription& desc, double ratio)
{
    // A box that the outline turns inside out is taken as the painter takes it: turned back.
    const double inset = desc.lineWidth_ / 2.0;
    const double width = desc.rect_.width() - 2 * inset, height = desc.rect_.height() - 2 * inset;
    x = (desc.rect_.left + inset + width / 2) * ratio;
    y = (desc.rect_.top + inset + height / 2) * ratio;
    halfWidth = std::abs(width) / 2 * ratio;
    halfHeight = std::abs(height) / 2 * ratio;
    outline = std::max(desc.lineWidth_ * ratio, 1.0); // a width of 0 is one pixel
}

Span::Span(const EllipseDescription& desc)
{
    if (desc.startAngle_ == 0 && desc.endAngle_ == 360)
        return;
    from = 360 - desc.endAngle_;
    int to = 360 - desc.startAngle_;
    if (to < from)
        to += 360;
    degrees = to - from;
}

void addEllipse(std::vector<EllipseVertex>& quads, const Ellipse& ellipse, EllipsePart part,
                Colour fill, Colour line, const Box& visible)
{
    EllipseVertex vertices[4];
    if (build(vertices, ellipse, part, fill, line, visible))
        quads.insert(quads.end(), std::begin(vertices), std::end(vertices));
}

void addPie(std::vector<PieVertex>& quads, const Ellipse& ellipse, EllipsePart part,
            const Span& span, Colour colour, const Box& visible)
{
    EllipseVertex vertices[4];
    if (span.degrees <= 0 || !build(vertices, ellipse, part, colour, colour, visible))
        return;
    const Ray from(ellipse, span.from), to(ellipse, span.from + span.degrees);
    const double cap = part == EllipsePart::eOutline ? ellipse.outline / 2 : 0.0;
    const Ray middle(ellipse, span.from + span.degrees / 2.0);
    constexpr float kEither = -1e6f;
    for (const EllipseVertex& v : vertices) {
        const double px = static_cast<double>(v.px), py = static_cast<double>(v.py);
        quads.push_back({v, f(from.distance(px, py) + cap), f(cap - to.distance(px, py)),
                         span.degrees > 180 ? kEither : f(middle.along(px, py) + cap)});
    }
}

} // namespace GLDrawing
