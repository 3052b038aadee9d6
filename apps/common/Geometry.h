#pragma once

#include <OS/Primitives/Rectangle.h>

namespace App {

using Rect = Tq::Rectangle<int>;
using Point = XY<int>;

/// A rectangle made smaller (or larger) on every side.
inline Rect inset(const Rect& rect, int by)
{
    return {rect.left + by, rect.top + by, rect.right - by, rect.bottom - by};
}

inline Point centreOf(const Rect& rect)
{
    return {(rect.left + rect.right) / 2, (rect.top + rect.bottom) / 2};
}

} // namespace App
