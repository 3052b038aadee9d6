#include "OS/Mac/OpenGL/Drawing/RectGeometry.h"

#include <OS/Primitives/RectDescription.h>

namespace GLDrawing {

namespace {

// Beyond this many pixels floats get coarse and rectangles are cut first.
constexpr long long kFar = 1 << 15;

Tq::Rectangle<int> upright(const Tq::Rectangle<int>& rectangle)
{
    const auto far = [](int start, int size) {
        return static_cast<int>(
            std::min<long long>(static_cast<long long>(start) + size, INT32_MAX));
    };
    return {rectangle.left, rectangle.top, far(rectangle.left, rectangle.width()),
            far(rectangle.top, rectangle.height())};
}

// What can be seen, in pixels of descriptions and a little more.
Tq::Rectangle<int> logical(const Box& visible, double ratio)
{
    const auto down = [ratio](int edge) { return static_cast<int>(std::floor(edge / ratio)) - 2; };
    const auto up = [ratio](int edge) { return static_cast<int>(std::ceil(edge / ratio)) + 2; };
    return {down(visible.left), down(visible.top), up(visible.right), up(visible.bottom)};
}

bool reachesFar(const Tq::Rectangle<int>& r, double ratio)
{
    const auto far = static_cast<long long>(static_cast<double>(kFar) / ratio);
    return r.left < -far || r.top < -far || r.right > far || r.bottom > far;
}

// A stretch of pixels that are covered alike.
struct Band
{
    int from, to;
    double share;
};

struct Bands
{
    Band all[3];
    int count = 0;

    void add(int from, int to, double share)
    {
        if (from < to && share > 0.0)
            all[count++] = {from, to, share};
    }
    const Band* begin() const { return all; }
    const Band* end() const { return all + count; }
};

Bands bandsOf(double from, double to)
{
    Bands bands;
    const int first = static_cast<int>(std::floor(from));
    const int last = static_cast<int>(std::floor(to));
    if (first == last) {
        bands.add(first, first + 1, to - from);
        return bands;
    }
    const int whole = static_cast<int>(std::ceil(from));
    bands.add(first, whole, whole - from);
    bands.add(whole, last, 1.0);
    bands.add(last, last + 1, to - last);
    return bands;
}

Colour shareOf(Colour colour, double share)
{
    return between(Colour(0), colour, static_cast<float>(share));
}

} // namespace

Colour Fill::colourAt(double y) const
{
    if (fadeBottom <= fadeTop || topColour == bottomColour)
        return topColour;
    return between(topColour, bottomColour,
                   static_cast<float>((y - fadeTop) / (fadeBottom - fadeTop)));
}

Fill makeFill(const Tq::Rectangle<int>& rectangle, Colour top, Colour bottom, double ratio,
              const Box& visible)
{
    Tq::Rectangle<int> r = upright(rectangle);
    if (reachesFar(r, ratio)) {
        RectDescription desc;
        desc.rect_ = r;
        r = clip(desc, logical(visible, ratio)) ? desc.rect_ : Tq::Rectangle<int>();
    }
    return {r.left * ratio, r.top * ratio,         r.right * ratio,         r.bottom * ratio, top,
            bottom,         rectangle.top * ratio, rectangle.bottom * ratio};
}

void endWithTarget(Fill& fill, const Box& target)
{
    if (nearestEdge(fill.right) == target.right)
        fill.right = target.right;
    if (nearestEdge(fill.bottom) == target.bottom)
        fill.bottom = target.bottom;
}

Box hardEdges(const Fill& fill)
{
    return {nearestEdge(fill.left), nearestEdge(fill.top), nearestEdge(fill.right),
            nearestEdge(fill.bottom)};
}

void addBox(std::vector<FillVertex>& quads, const Box& box, Colour top, Colour bottom)
{
    if (box.isEmpty())
        return;
    const auto left = static_cast<float>(box.left), right = static_cast<float>(box.right);
    const auto up = static_cast<float>(box.top), down = static_cast<float>(box.bottom);
    quads.push_back({left, up, top});
    quads.push_back({right, up, top});
    quads.push_back({right, down, bottom});
    quads.push_back({left, down, bottom});
}

void addHardFill(std::vector<FillVertex>& quads, const Fill& fill)
{
    const Box box = hardEdges(fill);
    addBox(quads, box, fill.colourAt(box.top), fill.colourAt(box.bottom));
}

void addSoftFill(std::vector<FillVertex>& quads, const Fill& fill)
{
    const Bands columns = bandsOf(fill.left, fill.right);
    for (const Band& row : bandsOf(fill.top, fill.bottom)) {
        const Colour top = fill.colourAt(row.from), bottom = fill.colourAt(row.to);
        for (const Band& column : columns) {
            const double share = row.share * column.share;
            addBox(quads, {column.from, row.from, column.to, row.to}, shareOf(top, share),
                   shareOf(bottom, share));
        }
    }
}

} // namespace GLDrawing
