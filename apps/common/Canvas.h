#pragma once

#include "common/Geometry.h"
#include "common/Resources.h"
#include "common/Text.h"
#include "common/Theme.h"

#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <vector>

namespace App {

/// What an application draws on, in logical pixels.
///
/// Scales for its target and hands runs of one kind of primitive to the renderer in one call, in
/// the order of drawing. What was drawn is complete after the destructor.
class Canvas
{
public:
    Canvas(Resources& resources, Tq::Ptr<iGraphicPrimitivesRenderer> renderer);
    ~Canvas();
    Canvas(const Canvas&) = delete;
    Canvas& operator=(const Canvas&) = delete;

    Resources& resources() { return resources_; }

    void fill(const Rect& rect, const NormalisedRGB& colour) { fill(rect, colour, colour); }
    /// A gradient straight down.
    void fill(const Rect& rect, const NormalisedRGB& top, const NormalisedRGB& bottom);
    /// A flat wash over what is there.
    void wash(const Rect& rect, const NormalisedRGB& colour, float alpha);
    /// A frame that lies inside the rectangle.
    void frame(const Rect& rect, const NormalisedRGB& colour, int width = 1);
    void washFrame(const Rect& rect, const NormalisedRGB& colour, float alpha);
    void ellipse(const Rect& box, const NormalisedRGB& colour);
    void ellipse(const Rect& box, const NormalisedRGB& colour, const NormalisedRGB& line);
    /// Straight down or straight across.
    void dottedLine(const Point& from, const Point& to, const NormalisedRGB& colour);
    void curve(const Point& start, const Point& control1, const Point& control2, const Point& end,
               const NormalisedRGB& colour, int width);
    /// A picture from Resources::blank() for just this size.
    void picture(const Tq::Ptr<iHostImage>& image, const Rect& rect, float opacity = 1.0f);
    /// A whole image, made as large as a rectangle: only where GL draws. @param size its pixels
    void stretched(const Tq::Ptr<iImageBase>& image, const Point& size, const Rect& rect,
                   bool blend = true);
    /// The same passed through an effect, replacing what is there.
    void passed(const Tq::Ptr<iImageBase>& image, const Point& size, const Rect& rect,
                const ShaderTechnique& technique);

    /// Text whose first character begins at x. @return its width
    int text(const Text& text, int x, int baseline, const Theme::Type& type,
             const NormalisedRGB& colour);
    int textRight(const Text& text, int right, int baseline, const Theme::Type& type,
                  const NormalisedRGB& colour);
    int textCentred(const Text& text, int centre, int baseline, const Theme::Type& type,
                    const NormalisedRGB& colour);
    /// Text with a selected stretch on a band.
    void selectedText(const Text& text, int x, int baseline, const Theme::Type& type,
                      const NormalisedRGB& colour, const NormalisedRGB& band, int from, int to);

    int width(const Text& text, const Theme::Type& type);
    /// The x of every boundary between characters.
    std::vector<int> boundaries(const Text& text, const Theme::Type& type);
    /// The text, or as much of it as fits with an ellipsis behind; empty when not even that fits.
    Text fitted(const Text& text, int width, const Theme::Type& type);
    /// The same for a path: an ellipsis stands for its start.
    Text fittedPath(const Text& path, int width, const Theme::Type& type);

    /// Nothing outside the rectangle is drawn until endClip().
    void clip(const Rect& rect);
    void endClip();

private:
    enum class Kind
    {
        eNone,
        eRect,
        eAlpha,
        eEllipse,
        eLine,
        eText,
        eCurve,
        eImage,
        eEffect
    };

    int scaled(int length) const { return resources_.scaled(length); }
    Rect scaled(const Rect& rect) const { return resources_.scaled(rect); }
    Point scaled(const Point& point) const { return {scaled(point.x), scaled(point.y)}; }
    void begin(Kind kind);
    void flush();
    void setClip();

    Resources& resources_;
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer_;
    double scale_;
    Kind kind_ = Kind::eNone;
    std::vector<RectDescription> rects_;
    std::vector<AlphaRectDescription> washes_;
    std::vector<EllipseDescription> ellipses_;
    std::vector<LineDescription> lines_;
    std::vector<TextDescription> texts_;
    std::vector<BezierCurveDescription> curves_;
    std::vector<ImageDescription> images_;
    std::vector<ImageDescriptionEx> effects_;
    std::vector<Rect> clips_;
};

/// The baseline that puts text in the middle of a height.
inline int baselineIn(const Rect& rect, const Theme::Type& type)
{
    return (rect.top + rect.bottom) / 2 + (type.size * 37 + 50) / 100;
}

} // namespace App
