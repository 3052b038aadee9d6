#pragma once

#include <OS/Primitives/NormalisedRGB.h>
#include <OS/Primitives/Rectangle.h>

#include <QColor>
#include <QRect>

#include <algorithm>

/// Values of descriptions as the painter takes them.
namespace PainterValues {

inline QColor toQColor(const NormalisedRGB& colour, float alpha)
{
    return QColor(NormalisedRGB::toByte(colour.red), NormalisedRGB::toByte(colour.green),
                  NormalisedRGB::toByte(colour.blue), NormalisedRGB::toByte(alpha));
}
inline QColor toQColor(const NormalisedRGB& colour)
{
    return toQColor(colour, colour.alpha);
}

/// At the rectangle's left and top, with its width and height. Far outside of any target the edges
/// are cut, so that the painter's own sums stay in range.
inline QRect toQRect(const Tq::Rectangle<int>& rectangle)
{
    constexpr int kFar = 1 << 28;
    const auto cut = [](long long edge) {
        return static_cast<int>(std::clamp<long long>(edge, -kFar, kFar));
    };
    const int left = cut(rectangle.left);
    const int top = cut(rectangle.top);
    const int right = cut(static_cast<long long>(rectangle.left) + rectangle.width());
    const int bottom = cut(static_cast<long long>(rectangle.top) + rectangle.height());
    return QRect(left, top, right - left, bottom - top);
}

} // namespace PainterValues
