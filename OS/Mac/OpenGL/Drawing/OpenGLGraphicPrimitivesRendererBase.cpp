#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRendererBase.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/OpenGL/Drawing/DrawingResources.h"
#include "OS/Mac/OpenGL/Drawing/EllipseGeometry.h"
#include "OS/Mac/OpenGL/Drawing/LineGeometry.h"
#include "OS/Mac/OpenGL/Drawing/QuadPainter.h"
#include "OS/Mac/OpenGL/Drawing/RectGeometry.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <QGuiApplication>
#include <algorithm>
#include <cmath>

using namespace GLDrawing;

OpenGLGraphicPrimitivesRendererBase::OpenGLGraphicPrimitivesRendererBase(
    const DrawingTarget& target, GLuint targetTexture)
    : target_(target), targetTexture_(targetTexture), clip_(target)
{
}

void OpenGLGraphicPrimitivesRendererBase::setClipRegion(Tq::Ptr<iRegion> region)
{
    if (!region) {
        if (hasRegion_)
            clip_ = ClipRegion(target_);
        hasRegion_ = false;
        return;
    }
    const auto* rgnImpl = dynamic_cast<const QtRegion*>(region.get());
    if (!rgnImpl) {
        OSInternal::reportAssertion("rgnImpl", "OS/Mac/OpenGLGraphicPrimitivesRenderer line 88");
        return;
    }
    // A replay sets the same region for batch after batch.
    if (hasRegion_ && region_ == rgnImpl->region())
        return;
    hasRegion_ = true;
    region_ = rgnImpl->region();
    clip_ = ClipRegion(region_, target_);
}

/// One call that draws shapes: collects quads of one kind after the other, and hands each run to
/// GL.
class OpenGLGraphicPrimitivesRendererBase::Shapes
{
public:
    explicit Shapes(const OpenGLGraphicPrimitivesRendererBase& renderer)
        : resources_(DrawingResources::instance()),
          painter_(renderer.target_, renderer.clip_, resources_.vertexBuffer, resources_.run),
          target_(renderer.target_.bounds), ratio_(renderer.target_.ratio),
          antialias_(renderer.antialias_), blend_(renderer.blend_)
    {
        resources_.fills.clear();
        resources_.lines.clear();
        resources_.ellipses.clear();
        resources_.pies.clear();
    }

    void fill(const Tq::Rectangle<int>& rect, Colour top, Colour bottom);
    void line(const LineDescription& desc, bool keepsOrderWithSlanted);
    void curve(const BezierCurveDescription& desc);
    void ellipse(const EllipseDescription& desc);
    /// Draws what is collected.
    void flush();

    bool hasLines() const { return !resources_.lines.empty(); }

private:
    void dots(const LineDescription& desc, Colour colour);
    void axisAligned(const Box& box, Colour colour, bool keepsOrderWithSlanted);
    void ellipsePart(const Ellipse& ellipse, const Span& span, EllipsePart part, Colour fill,
                     Colour line);

    // Whether a shape of that colour takes away what is under it, where it covers a pixel in part.
    bool replaces(Colour colour) const { return !blend_ && !isOpaque(colour); }

    // What was collected of another kind goes first.
    void startLines()
    {
        if (!resources_.fills.empty())
            flush();
    }
    void flushFills(Blending blending);
    void flushLines(Blending blending);
    void flushEllipses(Blending blending);
    void flushPies(Blending blending);
    void setSharpness(const Program& program);

    // A shape that is not opaque replaces the share of each pixel that it covers: that share is
    // taken away, then the colour is added. `add` collects quads in a colour, `flushKind` draws
    // them.
    template <class Add>
    void replaceCovered(Colour colour, Add add, void (Shapes::*flushKind)(Blending))
    {
        flush();
        add(kOpaqueBlack);
        (this->*flushKind)(Blending::eErase);
        add(colour);
        (this->*flushKind)(Blending::eAdd);
    }

    DrawingResources& resources_;
    QuadPainter painter_;
    Box target_;
    double ratio_;
    bool antialias_;
    bool blend_;
    bool translucent_ = false; // of the fills collected
    bool soft_ = false;        // likewise: some pixels are covered in part
};

// -- What is collected goes to GL
// ------------------------------------------------------------------

void OpenGLGraphicPrimitivesRendererBase::Shapes::flush()
{
    const bool over = soft_ || (blend_ && translucent_);
    flushFills(over ? Blending::eOver : Blending::eNone);
    flushLines(Blending::eOver);
    flushEllipses(Blending::eOver);
    flushPies(Blending::eOver);
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::flushFills(Blending blending)
{
    if (!resources_.fills.empty() && painter_.use(resources_.programs.shape(Programs::eFill)))
        painter_.draw(resources_.fills, blending);
    resources_.fills.clear();
    translucent_ = soft_ = false;
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::flushLines(Blending blending)
{
    if (!resources_.lines.empty() && painter_.use(resources_.programs.shape(Programs::eLine)))
        painter_.draw(resources_.lines, blending);
    resources_.lines.clear();
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::setSharpness(const Program& program)
{
    setUniform(program.sharpness, antialias_ ? 1.0f : kHardEdge);
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::flushEllipses(Blending blending)
{
    if (resources_.ellipses.empty())
        return;
    const Program& program = resources_.programs.shape(Programs::eEllipse);
    if (painter_.use(program)) {
        setSharpness(program);
        painter_.draw(resources_.ellipses, blending);
    }
    resources_.ellipses.clear();
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::flushPies(Blending blending)
{
    if (resources_.pies.empty())
        return;
    const Program& program = resources_.programs.shape(Programs::ePie);
    if (painter_.use(program)) {
        setSharpness(program);
        painter_.draw(resources_.pies, blending);
    }
    resources_.pies.clear();
}

// -- Rectangles
// ------------------------------------------------------------------------------------

// On whole pixels a softened rectangle is the same one.
void OpenGLGraphicPrimitivesRendererBase::Shapes::fill(const Tq::Rectangle<int>& rect, Colour top,
                                                       Colour bottom)
{
    Fill fill = makeFill(rect, top, bottom, ratio_, painter_.visible());
    endWithTarget(fill, target_);
    if (!antialias_ || ratio_ == std::floor(ratio_)) {
        addHardFill(resources_.fills, fill);
    } else if (replaces(top) || replaces(bottom)) {
        flush();
        Fill mask = fill;
        mask.topColour = mask.bottomColour = kOpaqueBlack;
        addSoftFill(resources_.fills, mask);
        flushFills(Blending::eErase);
        addSoftFill(resources_.fills, fill);
        flushFills(Blending::eAdd);
        return;
    } else {
        addSoftFill(resources_.fills, fill);
        soft_ = true;
    }
    translucent_ = translucent_ || !isOpaque(top) || !isOpaque(bottom);
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const RectDescription* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    Shapes shapes(*this);
    for (const RectDescription* desc = descs; desc != descs + count; ++desc) {
        const Colour top = premultiplied(desc->topColour_);
        const bool even = desc->topColour_ == desc->bottomColour_;
        shapes.fill(desc->rect_, top, even ? top : premultiplied(desc->bottomColour_));
    }
    shapes.flush();
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const AlphaRectDescription* descs,
                                                      unsigned int count)
{
    if (count == 0)
        return;
    blend_ = true;
    if (clip_.isEmpty())
        return;
    Shapes shapes(*this);
    for (const AlphaRectDescription* desc = descs; desc != descs + count; ++desc) {
        const Colour colour = premultiplied(desc->topColour_, desc->alpha_);
        shapes.fill(desc->rect_, colour, colour);
    }
    shapes.flush();
}

// -- Ellipses
// --------------------------------------------------------------------------------------

void OpenGLGraphicPrimitivesRendererBase::Shapes::ellipsePart(const Ellipse& ellipse,
                                                              const Span& span, EllipsePart part,
                                                              Colour fill, Colour line)
{
    const Box& visible = painter_.visible();
    const Colour own = part == EllipsePart::eOutline ? line : fill;
    if (span.isWhole()) {
        const auto add = [&](Colour colour) {
            addEllipse(resources_.ellipses, ellipse, part, colour, colour, visible);
        };
        if (part != EllipsePart::eBoth && replaces(own))
            return replaceCovered(own, add, &Shapes::flushEllipses);
        flushPies(Blending::eOver);
        addEllipse(resources_.ellipses, ellipse, part, fill, line, visible);
        return;
    }
    const auto add = [&](Colour colour) {
        addPie(resources_.pies, ellipse, part, span, colour, visible);
    };
    if (replaces(own))
        return replaceCovered(own, add, &Shapes::flushPies);
    flushEllipses(Blending::eOver);
    add(own);
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::ellipse(const EllipseDescription& desc)
{
    const bool both = desc.fillStyle_ == EllipseDescription::eFillAndOutline;
    const bool filled = both || desc.fillStyle_ == EllipseDescription::eFill;
    const bool outlined = both || desc.fillStyle_ == EllipseDescription::eOutline;
    const Ellipse shape(desc, ratio_);
    const Span span(desc);
    const Colour fill = premultiplied(desc.fillColour_), line = premultiplied(desc.lineColour_);
    if (both && span.isWhole() && isOpaque(line) && !replaces(fill))
        return ellipsePart(shape, span, EllipsePart::eBoth, fill, line);
    if (filled)
        ellipsePart(shape, span, EllipsePart::eFill, fill, line);
    if (outlined)
        ellipsePart(shape, span, EllipsePart::eOutline, fill, line);
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const EllipseDescription* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    Shapes shapes(*this);
    for (const EllipseDescription* desc = descs; desc != descs + count; ++desc)
        shapes.ellipse(*desc);
    shapes.flush();
}

// -- Lines
// -----------------------------------------------------------------------------------------

namespace {

bool isAxisAlignedAndSolid(const LineDescription& desc)
{
    return desc.lineStyle_ != LineDescription::eDotted &&
           (desc.start_.x == desc.end_.x || desc.start_.y == desc.end_.y);
}

// One row up, deliberately.
Point placeOf(const XY<int>& point, double ratio)
{
    return {point.x * ratio, (point.y - 1.0) * ratio};
}

} // namespace

void OpenGLGraphicPrimitivesRendererBase::Shapes::axisAligned(const Box& whole, Colour colour,
                                                              bool keepsOrderWithSlanted)
{
    const Box box = whole.intersected(painter_.visible());
    if (box.isEmpty())
        return;
    if (keepsOrderWithSlanted && !replaces(colour)) {
        startLines();
        return addBox(resources_.lines, box, colour);
    }
    flushLines(Blending::eOver);
    addBox(resources_.fills, box, colour);
    translucent_ = translucent_ || !isOpaque(colour);
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::dots(const LineDescription& desc, Colour colour)
{
    const double gap = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    const auto add = [&](Colour c) {
        addDots(resources_.lines, placeOf(desc.start_, ratio_), placeOf(desc.end_, ratio_), ratio_,
                gap, c, painter_.visible());
    };
    if (replaces(colour))
        return replaceCovered(colour, add, &Shapes::flushLines);
    add(colour);
}

void OpenGLGraphicPrimitivesRendererBase::Shapes::line(const LineDescription& desc,
                                                       bool keepsOrderWithSlanted)
{
    const Colour colour = premultiplied(desc.colour_);
    const Point from = placeOf(desc.start_, ratio_), to = placeOf(desc.end_, ratio_);
    const Stroke stroke = Stroke::of(desc.lineWidth_, ratio_, antialias_);
    if (isAxisAlignedAndSolid(desc))
        return axisAligned(axisAlignedLine(from, to, stroke), colour, keepsOrderWithSlanted);
    startLines();
    if (desc.lineStyle_ == LineDescription::eDotted)
        return dots(desc, colour);
    const auto add = [&](Colour c) {
        addLine(resources_.lines, from, to, stroke, c, painter_.visible());
    };
    if (replaces(colour))
        return replaceCovered(colour, add, &Shapes::flushLines);
    add(colour);
}

// Horizontal and vertical lines are drawn faster as rectangles, but only a long run of them pays
// for changing the program.
void OpenGLGraphicPrimitivesRendererBase::renderMulti(const LineDescription* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    constexpr std::ptrdiff_t kLongRun = 16;
    Shapes shapes(*this);
    const LineDescription* const end = descs + count;
    for (const LineDescription* desc = descs; desc != end;) {
        const LineDescription* runEnd = std::find_if_not(desc, end, isAxisAlignedAndSolid);
        const bool lone = runEnd == end && !shapes.hasLines();
        const bool keepsOrder = runEnd - desc < kLongRun && !lone;
        for (; desc != runEnd; ++desc)
            shapes.line(*desc, keepsOrder);
        for (; desc != end && !isAxisAlignedAndSolid(*desc); ++desc)
            shapes.line(*desc, true);
    }
    shapes.flush();
}

// -- Curves
// ----------------------------------------------------------------------------------------

void OpenGLGraphicPrimitivesRendererBase::Shapes::curve(const BezierCurveDescription& desc)
{
    const Colour colour = premultiplied(desc.colour_);
    const Stroke stroke = Stroke::of(desc.lineWidth_, ratio_, antialias_);
    const auto place = [this](const XY<int>& p) { return Point{p.x * ratio_, p.y * ratio_}; };
    const Point points[4] = {place(desc.start_), place(desc.control1_), place(desc.control2_),
                             place(desc.end_)};
    const auto add = [&](Colour c) {
        addCurve(resources_.lines, points, stroke, c, painter_.visible());
    };
    if (replaces(colour))
        return replaceCovered(colour, add, &Shapes::flushLines);
    add(colour);
}

void OpenGLGraphicPrimitivesRendererBase::renderMulti(const BezierCurveDescription* descs,
                                                      unsigned int count)
{
    if (count == 0 || clip_.isEmpty())
        return;
    Shapes shapes(*this);
    for (const BezierCurveDescription* desc = descs; desc != descs + count; ++desc)
        shapes.curve(*desc);
    shapes.flush();
}
