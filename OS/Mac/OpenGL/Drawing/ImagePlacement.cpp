#include "OS/Mac/OpenGL/Drawing/ImagePlacement.h"

namespace GLDrawing {

namespace {

bool isNear(double a, double b)
{
    return std::abs(a - b) < 1e-4;
}
bool isWhole(double value)
{
    return isNear(value, std::round(value));
}

// What is left of a stretch, and of the other one that goes with it, inside of two limits.
void cut(double& from, double& to, double& otherFrom, double& otherTo, double low, double high)
{
    const double factor = to > from ? (otherTo - otherFrom) / (to - from) : 0.0;
    if (from < low) {
        otherFrom += (low - from) * factor;
        from = low;
    }
    if (to > high) {
        otherTo -= (to - high) * factor;
        to = high;
    }
}

} // namespace

ImagePlacement::ImagePlacement(const Tq::Rectangle<int>& source, const Tq::Rectangle<int>& dest,
                               double ratio)
    : ImagePlacement(
          Area{double(source.left), double(source.top), double(source.left) + source.width(),
               double(source.top) + source.height()},
          Area{dest.left * ratio, dest.top * ratio, (double(dest.left) + dest.width()) * ratio,
               (double(dest.top) + dest.height()) * ratio})
{
}

ImagePlacement::ImagePlacement(const ImageDescriptionEx::Rect& source,
                               const ImageDescriptionEx::Rect& dest, double ratio)
    : ImagePlacement(
          Area{double(source.left), double(source.top), double(source.right),
               double(source.bottom)},
          Area{dest.left * ratio, dest.top * ratio, dest.right * ratio, dest.bottom * ratio})
{
}

ImagePlacement ImagePlacement::pixels(int left, int top, int width, int height)
{
    return ImagePlacement(
        Area{0, 0, double(width), double(height)},
        Area{double(left), double(top), double(left) + width, double(top) + height});
}

// Written so that what is no number is empty.
bool ImagePlacement::isEmpty() const
{
    return !(source_.left < source_.right && source_.top < source_.bottom &&
             dest_.left < dest_.right && dest_.top < dest_.bottom);
}

ImagePlacement ImagePlacement::scaled(double x, double y) const
{
    ImagePlacement result = *this;
    for (Area* area : {&result.source_, &result.limits_})
        *area = {area->left * x, area->top * y, area->right * x, area->bottom * y};
    return result;
}

void ImagePlacement::cutSource(const Area& area)
{
    cut(source_.left, source_.right, dest_.left, dest_.right, area.left, area.right);
    cut(source_.top, source_.bottom, dest_.top, dest_.bottom, area.top, area.bottom);
}

void ImagePlacement::cutDest(const Area& area)
{
    cut(dest_.left, dest_.right, source_.left, source_.right, area.left, area.right);
    cut(dest_.top, dest_.bottom, source_.top, source_.bottom, area.top, area.bottom);
}

ImagePlacement ImagePlacement::within(const XY<int>& size) const
{
    ImagePlacement result = *this;
    if (isEmpty())
        return result;
    result.cutSource({0.0, 0.0, double(size.x), double(size.y)});
    result.limits_ = result.source_;
    return result;
}

ImagePlacement ImagePlacement::within(const Box& visible) const
{
    ImagePlacement result = *this;
    if (isEmpty())
        return result;
    result.cutDest(
        {double(visible.left), double(visible.top), double(visible.right), double(visible.bottom)});
    return result;
}

ImagePlacement ImagePlacement::relativeTo(const XY<int>& pixel) const
{
    ImagePlacement result = *this;
    for (Area* area : {&result.source_, &result.limits_})
        *area = {area->left - pixel.x, area->top - pixel.y, area->right - pixel.x,
                 area->bottom - pixel.y};
    return result;
}

Tq::Rectangle<int> ImagePlacement::sourcePixels() const
{
    const double softening = isOneToOne() ? 0.0 : 1.0;
    const auto down = [&](double value, double limit) {
        return static_cast<int>(std::floor(std::max(value - softening, limit) + 1e-4));
    };
    const auto up = [&](double value, double limit) {
        return static_cast<int>(std::ceil(std::min(value + softening, limit) - 1e-4));
    };
    return {down(source_.left, limits_.left), down(source_.top, limits_.top),
            up(source_.right, limits_.right), up(source_.bottom, limits_.bottom)};
}

bool ImagePlacement::isOneToOne() const
{
    return isWhole(source_.left) && isWhole(source_.top) && isWhole(dest_.left) &&
           isWhole(dest_.top) && isNear(source_.right - source_.left, dest_.right - dest_.left) &&
           isNear(source_.bottom - source_.top, dest_.bottom - dest_.top) && isWhole(dest_.right) &&
           isWhole(dest_.bottom);
}

double ImagePlacement::sourceX(double x) const
{
    return source_.left +
           (x - dest_.left) * (source_.right - source_.left) / (dest_.right - dest_.left);
}

double ImagePlacement::sourceY(double y) const
{
    return source_.top +
           (y - dest_.top) * (source_.bottom - source_.top) / (dest_.bottom - dest_.top);
}

bool ImagePlacement::takesInAll(const XY<int>& size) const
{
    return isNear(limits_.left, 0) && isNear(limits_.top, 0) && isNear(limits_.right, size.x) &&
           isNear(limits_.bottom, size.y);
}

ImageDescriptionEx::Rect ImagePlacement::source() const
{
    return {static_cast<float>(source_.left), static_cast<float>(source_.top),
            static_cast<float>(source_.right), static_cast<float>(source_.bottom)};
}

ImageDescriptionEx::Rect ImagePlacement::dest() const
{
    return {static_cast<float>(dest_.left), static_cast<float>(dest_.top),
            static_cast<float>(dest_.right), static_cast<float>(dest_.bottom)};
}

ImagePlacement ImagePlacement::asShares() const
{
    return {Area{0.0, 0.0, 1.0, 1.0}, dest_};
}

// Where nothing is scaled the middles of pixels come out as the middles of texels.
void ImagePlacement::addTo(std::vector<ImageVertex>& quads) const
{
    const Box box = destBox();
    if (box.isEmpty())
        return;
    const auto vertex = [&](int x, int y) {
        quads.push_back({static_cast<float>(x), static_cast<float>(y),
                         static_cast<float>(sourceX(x)), static_cast<float>(sourceY(y))});
    };
    vertex(box.left, box.top);
    vertex(box.right, box.top);
    vertex(box.right, box.bottom);
    vertex(box.left, box.bottom);
}

Box ImagePlacement::destBox() const
{
    return {nearestEdge(dest_.left), nearestEdge(dest_.top), nearestEdge(dest_.right),
            nearestEdge(dest_.bottom)};
}

void ImagePlacement::addTo(std::vector<ScaledImageVertex>& quads) const
{
    const Box box = destBox();
    if (box.isEmpty())
        return;
    // The middles of the outermost pixels; of a part of one pixel, its own middle.
    const auto inset = [](double& from, double& to) {
        const double middle = (from + to) / 2;
        from = std::min(from + 0.5, middle);
        to = std::max(to - 0.5, middle);
    };
    Area limits = limits_;
    inset(limits.left, limits.right);
    inset(limits.top, limits.bottom);
    const auto f = [](double value) { return static_cast<float>(value); };
    const auto vertex = [&](int x, int y) {
        quads.push_back({f(x), f(y), f(sourceX(x)), f(sourceY(y)), f(limits.left), f(limits.top),
                         f(limits.right), f(limits.bottom)});
    };
    vertex(box.left, box.top);
    vertex(box.right, box.top);
    vertex(box.right, box.bottom);
    vertex(box.left, box.bottom);
}

} // namespace GLDrawing
