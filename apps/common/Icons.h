#pragma once

#include "common/Resources.h"

#include <OS/Painting/iHostImage.h>

#include <map>
#include <tuple>

namespace App {

/// Small shapes with smooth edges that the primitives do not have, drawn once for each size and
/// colour.
class Icons
{
public:
    enum class Shape
    {
        eForwards,
        eBackwards,
        ePlayhead,
        eMissing,
        eSearch
    };

    explicit Icons(Resources& resources) : resources_(resources) {}

    /// The picture of a shape for a logical rectangle.
    Tq::Ptr<iHostImage> get(Shape shape, const Tq::Rectangle<int>& rect,
                            const NormalisedRGB& colour);

private:
    using Key = std::tuple<Shape, int, int, int, int, int>;

    Resources& resources_;
    std::map<Key, Tq::Ptr<iHostImage>> made_;
};

} // namespace App
