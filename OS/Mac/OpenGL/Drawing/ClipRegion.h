#pragma once

#include "OS/Mac/OpenGL/Drawing/DrawingTarget.h"
#include "OS/Mac/OpenGL/Drawing/Quads.h"

#include <vector>

class QRegion;

namespace GLDrawing {

/// What may be drawn of a target, in its pixels: all of it, nothing, one box, or several.
///
/// One box is for GL's scissor. Quads are cut to several, one after the other, so that their order
/// stays; whatever runs across a quad is the same at every pixel afterwards.
class ClipRegion
{
public:
    /// The whole target.
    explicit ClipRegion(const DrawingTarget& target);
    /// What a region in pixels of descriptions leaves of it.
    ClipRegion(const QRegion& region, const DrawingTarget& target);

    bool isEmpty() const { return bounds_.isEmpty(); }
    /// Something of the viewport is left out.
    bool isLimited() const { return limited_; }
    bool isSeveral() const { return boxes_.size() > 1; }
    /// The smallest box around it.
    const Box& bounds() const { return bounds_; }

    /// Appends what of the quads lies inside.
    template <class V>
    void cut(const std::vector<V>& quads, std::vector<V>& result) const;

private:
    template <class V>
    void cutQuad(const V* quad, std::vector<V>& result) const;

    Box bounds_;
    bool limited_ = false;
    std::vector<Box> boxes_; // in rows of boxes, from the top; only where there are several
};

namespace detail {

struct Edges
{
    float left, top, right, bottom;
};

template <class V>
Edges edgesOf(const V* quad)
{
    V v = quad[0];
    Edges edges{placeX(v), placeY(v), placeX(v), placeY(v)};
    for (int i = 1; i < 4; ++i) {
        v = quad[i];
        edges.left = std::min(edges.left, placeX(v));
        edges.right = std::max(edges.right, placeX(v));
        edges.top = std::min(edges.top, placeY(v));
        edges.bottom = std::max(edges.bottom, placeY(v));
    }
    return edges;
}

/// A convex shape of at most eight corners, as a quad cut to a box is.
template <class V>
struct Polygon
{
    V corners[8];
    int count = 0;

    /// Keeps the side of an edge where sign * place is not below sign * edge.
    template <class Place>
    void keep(Place place, float sign, float edge)
    {
        Polygon result;
        for (int i = 0; i < count; ++i) {
            V& a = corners[i];
            V& b = corners[(i + 1) % count];
            const float fromA = sign * (place(a) - edge), fromB = sign * (place(b) - edge);
            if (fromA >= 0)
                result.add(a);
            if ((fromA > 0 && fromB < 0) || (fromA < 0 && fromB > 0)) {
                V crossing = between(a, b, fromA / (fromA - fromB));
                place(crossing) = edge;
                result.add(crossing);
            }
        }
        *this = result;
    }
    void add(const V& corner)
    {
        if (count < 8)
            corners[count++] = corner;
    }
    void appendTo(std::vector<V>& quads) const
    {
        for (int i = 1; i + 1 < count; i += 2) {
            quads.push_back(corners[0]);
            quads.push_back(corners[i]);
            quads.push_back(corners[i + 1]);
            quads.push_back(corners[std::min(i + 2, count - 1)]);
        }
    }
};

} // namespace detail

template <class V>
void ClipRegion::cutQuad(const V* quad, std::vector<V>& result) const
{
    const detail::Edges edges = detail::edgesOf(quad);
    const auto first = std::partition_point(boxes_.begin(), boxes_.end(), [&](const Box& box) {
        return static_cast<float>(box.bottom) <= edges.top;
    });
    const auto x = [](V& v) -> float& { return placeX(v); };
    const auto y = [](V& v) -> float& { return placeY(v); };
    for (auto box = first; box != boxes_.end(); ++box) {
        const auto left = static_cast<float>(box->left), right = static_cast<float>(box->right);
        const auto top = static_cast<float>(box->top), bottom = static_cast<float>(box->bottom);
        if (top >= edges.bottom)
            break;
        if (right <= edges.left || left >= edges.right)
            continue;
        if (left <= edges.left && right >= edges.right && top <= edges.top &&
            bottom >= edges.bottom) {
            result.insert(result.end(), quad, quad + 4);
            return; // the boxes lie apart
        }
        detail::Polygon<V> polygon;
        for (int i = 0; i < 4; ++i)
            polygon.add(quad[i]);
        polygon.keep(x, 1.0f, left);
        polygon.keep(x, -1.0f, right);
        polygon.keep(y, 1.0f, top);
        polygon.keep(y, -1.0f, bottom);
        polygon.appendTo(result);
    }
}

template <class V>
void ClipRegion::cut(const std::vector<V>& quads, std::vector<V>& result) const
{
    for (std::size_t i = 0; i + 3 < quads.size(); i += 4)
        cutQuad(quads.data() + i, result);
}

} // namespace GLDrawing
