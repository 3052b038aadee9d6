#include "common/Canvas.h"

#include <OS.h>
#include <OS/Windowing/iWindowManager.h>

#include <algorithm>
#include <cmath>

namespace App {

namespace {

constexpr wchar_t kEllipsis[] = L"\u2026";

template <class T>
void send(iGraphicPrimitivesRenderer& renderer, std::vector<T>& descs)
{
    renderer.renderMulti(descs.data(), static_cast<unsigned int>(descs.size()));
    descs.clear();
}

} // namespace

Canvas::Canvas(Resources& resources, Tq::Ptr<iGraphicPrimitivesRenderer> renderer)
    : resources_(resources), renderer_(std::move(renderer)), scale_(resources.scale())
{
    renderer_->setAntialiasingEnabled(true);
}

Canvas::~Canvas()
{
    flush();
}

void Canvas::begin(Kind kind)
{
    if (kind != kind_)
        flush();
    kind_ = kind;
}

void Canvas::flush()
{
    switch (kind_) {
    case Kind::eNone:
        break;
    case Kind::eRect:
        send(*renderer_, rects_);
        break;
    case Kind::eAlpha:
        send(*renderer_, washes_);
        break;
    case Kind::eEllipse:
        send(*renderer_, ellipses_);
        break;
    case Kind::eLine:
        send(*renderer_, lines_);
        break;
    case Kind::eText:
        send(*renderer_, texts_);
        break;
    case Kind::eCurve:
        send(*renderer_, curves_);
        break;
    case Kind::eImage:
        send(*renderer_, images_);
        break;
    case Kind::eEffect:
        send(*renderer_, effects_);
        break;
    }
    kind_ = Kind::eNone;
}

void Canvas::fill(const Rect& rect, const NormalisedRGB& top, const NormalisedRGB& bottom)
{
    if (rect.left >= rect.right || rect.top >= rect.bottom)
        return;
    begin(Kind::eRect);
    RectDescription& desc = rects_.emplace_back();
    desc.rect_ = scaled(rect);
    desc.topColour_ = top;
    desc.bottomColour_ = bottom;
}

void Canvas::wash(const Rect& rect, const NormalisedRGB& colour, float alpha)
{
    if (rect.left >= rect.right || rect.top >= rect.bottom)
        return;
    begin(Kind::eAlpha);
    AlphaRectDescription& desc = washes_.emplace_back();
    desc.rect_ = scaled(rect);
    desc.topColour_ = desc.bottomColour_ = colour;
    desc.alpha_ = alpha;
}

void Canvas::frame(const Rect& r, const NormalisedRGB& colour, int width)
{
    fill({r.left, r.top, r.right, r.top + width}, colour);
    fill({r.left, r.bottom - width, r.right, r.bottom}, colour);
    fill({r.left, r.top + width, r.left + width, r.bottom - width}, colour);
    fill({r.right - width, r.top + width, r.right, r.bottom - width}, colour);
}

void Canvas::washFrame(const Rect& r, const NormalisedRGB& colour, float alpha)
{
    wash({r.left, r.top, r.right, r.top + 1}, colour, alpha);
    wash({r.left, r.bottom - 1, r.right, r.bottom}, colour, alpha);
    wash({r.left, r.top + 1, r.left + 1, r.bottom - 1}, colour, alpha);
    wash({r.right - 1, r.top + 1, r.right, r.bottom - 1}, colour, alpha);
}

void Canvas::ellipse(const Rect& box, const NormalisedRGB& colour)
{
    begin(Kind::eEllipse);
    EllipseDescription& desc = ellipses_.emplace_back();
    desc.rect_ = scaled(box);
    desc.fillColour_ = colour;
    desc.lineWidth_ = 0;
}

void Canvas::ellipse(const Rect& box, const NormalisedRGB& colour, const NormalisedRGB& line)
{
    ellipse(box, colour);
    EllipseDescription& desc = ellipses_.back();
    desc.fillStyle_ = EllipseDescription::eFillAndOutline;
    desc.lineColour_ = line;
    desc.lineWidth_ = static_cast<std::uint16_t>(std::max(1, scaled(1)));
}

// Dotted lines are one target pixel wide: as many stand side by side as the scale asks for.
// Renderers draw lines one pixel above their y.
void Canvas::dottedLine(const Point& from, const Point& to, const NormalisedRGB& colour)
{
    begin(Kind::eLine);
    const Point start = scaled(from);
    const Point end = scaled(to);
    const bool down = start.x == end.x;
    for (int i = 0; i < std::max(1, scaled(1)); ++i) {
        LineDescription& desc = lines_.emplace_back();
        desc.start_ = {start.x + (down ? i : 0), start.y + 1 + (down ? 0 : i)};
        desc.end_ = {end.x + (down ? i : 0), end.y + 1 + (down ? 0 : i)};
        desc.colour_ = colour;
        desc.lineStyle_ = LineDescription::eDotted;
    }
}

void Canvas::curve(const Point& start, const Point& control1, const Point& control2,
                   const Point& end, const NormalisedRGB& colour, int lineWidth)
{
    begin(Kind::eCurve);
    BezierCurveDescription& desc = curves_.emplace_back();
    desc.start_ = scaled(start);
    desc.control1_ = scaled(control1);
    desc.control2_ = scaled(control2);
    desc.end_ = scaled(end);
    desc.colour_ = colour;
    desc.lineWidth_ = std::max(1, scaled(lineWidth));
}

void Canvas::picture(const Tq::Ptr<iHostImage>& image, const Rect& rect, float opacity)
{
    if (!image)
        return;
    begin(Kind::eImage);
    ImageDescription& desc = images_.emplace_back();
    const Point at = scaled(rect.topLeft());
    const Point size = image->getSize();
    desc.image_ = image;
    desc.sourceROI_ = {0, 0, size.x, size.y};
    desc.destROI_ = {at.x, at.y, at.x + size.x, at.y + size.y};
    desc.opacity_ = opacity;
}

void Canvas::stretched(const Tq::Ptr<iImageBase>& image, const Point& size, const Rect& rect,
                       bool blend)
{
    if (!image)
        return;
    begin(Kind::eImage);
    ImageDescription& desc = images_.emplace_back();
    desc.image_ = image;
    desc.sourceROI_ = {0, 0, size.x, size.y};
    desc.destROI_ = scaled(rect);
    desc.blend_ = blend;
}

void Canvas::passed(const Tq::Ptr<iImageBase>& image, const Point& size, const Rect& rect,
                    const ShaderTechnique& technique)
{
    if (!image)
        return;
    begin(Kind::eEffect);
    ImageDescriptionEx& desc = effects_.emplace_back();
    const Rect place = scaled(rect);
    desc.image_ = image;
    desc.technique_ = technique;
    desc.sourceRect_ = {0.0f, 0.0f, static_cast<float>(size.x), static_cast<float>(size.y)};
    desc.destRect_ = {static_cast<float>(place.left), static_cast<float>(place.top),
                      static_cast<float>(place.right), static_cast<float>(place.bottom)};
    desc.blend_ = false;
}

int Canvas::text(const Text& text, int x, int baseline, const Theme::Type& type,
                 const NormalisedRGB& colour)
{
    selectedText(text, x, baseline, type, colour, colour, 0, 0);
    return width(text, type);
}

int Canvas::textRight(const Text& string, int right, int baseline, const Theme::Type& type,
                      const NormalisedRGB& colour)
{
    return text(string, right - width(string, type), baseline, type, colour);
}

int Canvas::textCentred(const Text& string, int centre, int baseline, const Theme::Type& type,
                        const NormalisedRGB& colour)
{
    return text(string, centre - width(string, type) / 2, baseline, type, colour);
}

void Canvas::selectedText(const Text& string, int x, int baseline, const Theme::Type& type,
                          const NormalisedRGB& colour, const NormalisedRGB& band, int from, int to)
{
    if (string.empty())
        return;
    begin(Kind::eText);
    TextDescription& desc = texts_.emplace_back(string, scaled(Point(x, baseline)), colour,
                                                eTextDefault, resources_.font(type));
    desc.backColour_ = band;
    desc.highlightStart_ = from;
    desc.highlightEnd_ = to;
}

int Canvas::width(const Text& text, const Theme::Type& type)
{
    const int pixels = resources_.font(type)->measure(text).x;
    return static_cast<int>(std::ceil(pixels / scale_));
}

std::vector<int> Canvas::boundaries(const Text& text, const Theme::Type& type)
{
    std::vector<int> positions;
    resources_.font(type)->measure(text, positions);
    for (int& position : positions)
        position = static_cast<int>(std::lround(position / scale_));
    return positions;
}

Text Canvas::fitted(const Text& text, int available, const Theme::Type& type)
{
    if (width(text, type) <= available)
        return text;
    const int room = available - width(kEllipsis, type);
    const std::vector<int> positions = boundaries(text, type);
    std::uint32_t kept = 0;
    while (kept + 1 < positions.size() && positions[kept + 1] <= room)
        ++kept;
    if (kept == 0)
        return room >= 0 ? Text(kEllipsis) : Text();
    return text.substr(0, kept).trimmed() + kEllipsis;
}

Text Canvas::fittedPath(const Text& path, int available, const Theme::Type& type)
{
    if (width(path, type) <= available)
        return path;
    const int room = available - width(kEllipsis, type);
    const std::vector<int> positions = boundaries(path, type);
    if (room < 0 || positions.empty())
        return {};
    std::uint32_t from = 0;
    while (from + 1 < positions.size() && positions.back() - positions[from] > room)
        ++from;
    return kEllipsis + path.substr(from);
}

void Canvas::clip(const Rect& rect)
{
    clips_.push_back(clips_.empty() ? rect : rect.intersection(clips_.back()));
    setClip();
}

void Canvas::endClip()
{
    clips_.pop_back();
    setClip();
}

void Canvas::setClip()
{
    flush();
    if (clips_.empty())
        renderer_->setClipRegion(nullptr);
    else
        renderer_->setClipRegion(OS()->windowMgr()->createRegion({scaled(clips_.back())}));
}

} // namespace App
