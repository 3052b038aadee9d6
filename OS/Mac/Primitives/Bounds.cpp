#include <OS/Primitives/BezierCurveDescription.h>
#include <OS/Primitives/EllipseDescription.h>
#include <OS/Primitives/ImageDescription.h>
#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/LineDescription.h>
#include <OS/Primitives/RectDescription.h>
#include <OS/Primitives/TextDescription.h>

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace {

Tq::Rectangle<int> around(std::initializer_list<XY<int>> points)
{
    const XY<int>& first = *points.begin();
    Tq::Rectangle<int> bounds{first.x, first.y, first.x, first.y};
    for (const XY<int>& point : points)
        bounds = bounds.united({point.x, point.y, point.x, point.y});
    return bounds;
}

// A coordinate as a whole number; what no int can hold becomes the nearest that can, no number 0.
int toInt(float value)
{
    if (std::isnan(value))
        return 0;
    constexpr double kLowest = std::numeric_limits<int>::min();
    constexpr double kHighest = std::numeric_limits<int>::max();
    return static_cast<int>(std::clamp(static_cast<double>(value), kLowest, kHighest));
}

} // namespace

Tq::Rectangle<int> RectDescription::getBounds() const
{
    return rect_;
}

Tq::Rectangle<int> EllipseDescription::getBounds() const
{
    return rect_;
}

Tq::Rectangle<int> LineDescription::getBounds() const
{
    return around({start_, end_});
}

Tq::Rectangle<int> TextDescription::getBounds() const
{
    if (!font_)
        return {};
    const std::uint32_t metrics = font_->getMetrics();
    const int ascent = static_cast<int>(metrics >> 16);
    const int descent = static_cast<int>(metrics & 0xFFFF);
    return {pos_.x, pos_.y - ascent, pos_.x + font_->measure(text_).x, pos_.y + descent};
}

Tq::Rectangle<int> BezierCurveDescription::getBounds() const
{
    return around({start_, end_, control1_, control2_});
}

Tq::Rectangle<int> ImageDescription::getBounds() const
{
    return destROI_;
}

Tq::Rectangle<int> ImageDescriptionEx::getBounds() const
{
    return {toInt(std::floor(destRect_.left)), toInt(std::floor(destRect_.top)),
            toInt(std::ceil(destRect_.right)), toInt(std::ceil(destRect_.bottom))};
}

bool clip(RectDescription& desc, const Tq::Rectangle<int>& clipRect)
{
    const Tq::Rectangle<int> shared = desc.rect_.intersection(clipRect);
    if (!(shared == desc.rect_))
        desc.rect_ = shared;
    return shared.hasArea();
}
