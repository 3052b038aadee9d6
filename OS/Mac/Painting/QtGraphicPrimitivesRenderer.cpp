#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Painting/PainterValues.h"
#include "OS/Mac/Painting/QtRegion.h"

#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainterPath>
#include <QWidget>

#include <cmath>
#include <utility>

using PainterValues::toQColor;
using PainterValues::toQRect;

namespace {

bool isAxisAligned(const LineDescription& desc)
{
    return desc.start_.x == desc.end_.x || desc.start_.y == desc.end_.y;
}

// One row up, deliberately.
QLine placeOf(const LineDescription& desc)
{
    return QLine(desc.start_.x, desc.start_.y - 1, desc.end_.x, desc.end_.y - 1);
}

double applicationRatio()
{
    return qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
}

} // namespace

QtGraphicPrimitivesRenderer::QtGraphicPrimitivesRenderer(QWidget* widget) : widget_(widget)
{
    active_ = open(widget);
}

QtGraphicPrimitivesRenderer::QtGraphicPrimitivesRenderer(Tq::Ptr<QImage> image, unsigned char scale)
    : image_(std::move(image)), scale_(scale)
{
    active_ = open(image_.get());
    if (!active_)
        return;
    painter_.setClipping(false);
    painter_.scale(scale_, scale_);
}

QtGraphicPrimitivesRenderer::~QtGraphicPrimitivesRenderer() = default;

bool QtGraphicPrimitivesRenderer::open(QPaintDevice* target)
{
    if (!target || !painter_.begin(target))
        return false;
    painter_.setCompositionMode(QPainter::CompositionMode_Source);
    painter_.setRenderHint(QPainter::SmoothPixmapTransform);
    const double ratio = target->devicePixelRatioF();
    wholePixels_ = ratio == std::floor(ratio);
    return true;
}

void QtGraphicPrimitivesRenderer::finish()
{
    active_ = false;
    painter_.end();
}

void QtGraphicPrimitivesRenderer::setAntialiasingEnabled(bool enabled)
{
    antialias_ = enabled;
}

// The painter is told when it matters and changed: every switch has it prepare its pen anew.
void QtGraphicPrimitivesRenderer::soften(bool wanted)
{
    if (wanted == softened_)
        return;
    softened_ = wanted;
    painter_.setRenderHint(QPainter::Antialiasing, wanted);
}

void QtGraphicPrimitivesRenderer::setClipRegion(Tq::Ptr<iRegion> region)
{
    if (!active_)
        return;
    if (!region) {
        if (painter_.hasClipping())
            painter_.setClipping(false);
        return;
    }
    const auto* rgnImpl = dynamic_cast<const QtRegion*>(region.get());
    if (!rgnImpl) {
        OSInternal::reportAssertion("rgnImpl", "OS/Mac/QtGraphicPrimitivesRenderer line 496");
        return;
    }
    // A replay sets the same region for batch after batch: comparing is cheaper than setting it
    // again.
    if (painter_.hasClipping() && clip_ == rgnImpl->region())
        return;
    clip_ = rgnImpl->region();
    painter_.setClipRegion(clip_);
}

// On whole pixels a softened rectangle is the same one, drawn more slowly.
void QtGraphicPrimitivesRenderer::softenRectangles()
{
    soften(antialias_ && !wholePixels_);
}

void QtGraphicPrimitivesRenderer::renderMulti(const RectDescription* descs, unsigned int count)
{
    if (!active_ || count == 0)
        return;
    softenRectangles();
    for (const RectDescription* desc = descs; desc != descs + count; ++desc) {
        const QRect area = toQRect(desc->rect_);
        if (desc->topColour_ == desc->bottomColour_) {
            painter_.fillRect(area, toQColor(desc->topColour_));
            continue;
        }
        QLinearGradient gradient(desc->rect_.left, desc->rect_.top, desc->rect_.left,
                                 desc->rect_.bottom);
        gradient.setColorAt(0.0, toQColor(desc->topColour_));
        gradient.setColorAt(1.0, toQColor(desc->bottomColour_));
        painter_.fillRect(area, gradient);
    }
}

void QtGraphicPrimitivesRenderer::renderMulti(const AlphaRectDescription* descs, unsigned int count)
{
    if (!active_ || count == 0)
        return;
    softenRectangles();
    for (const AlphaRectDescription* desc = descs; desc != descs + count; ++desc) {
        switch (desc->blendMode_) {
        case AlphaRectDescription::eBlendOver:
        case AlphaRectDescription::eBlendOverToo:
            painter_.setCompositionMode(QPainter::CompositionMode_SourceOver);
            break;
        case AlphaRectDescription::eBlendCopy:
            painter_.setCompositionMode(QPainter::CompositionMode_Source);
            break;
        default:
            break;
        }
        painter_.fillRect(toQRect(desc->rect_), toQColor(desc->topColour_, desc->alpha_));
    }
}

void QtGraphicPrimitivesRenderer::renderMulti(const EllipseDescription* descs, unsigned int count)
{
    if (!active_ || count == 0)
        return;
    soften(antialias_);
    for (const EllipseDescription* desc = descs; desc != descs + count; ++desc) {
        const bool fill = desc->fillStyle_ == EllipseDescription::eFill ||
                          desc->fillStyle_ == EllipseDescription::eFillAndOutline;
        const bool outline = desc->fillStyle_ == EllipseDescription::eOutline ||
                             desc->fillStyle_ == EllipseDescription::eFillAndOutline;
        const double thickness = desc->lineWidth_;
        const QRectF box(desc->rect_.left + thickness / 2, desc->rect_.top + thickness / 2,
                         desc->rect_.width() - thickness, desc->rect_.height() - thickness);
        const QBrush brush(toQColor(desc->fillColour_));
        const QPen pen(toQColor(desc->lineColour_), thickness, Qt::SolidLine, Qt::SquareCap,
                       Qt::BevelJoin);

        if (desc->startAngle_ == 0 && desc->endAngle_ == 360) {
            painter_.setBrush(fill ? brush : QBrush(Qt::NoBrush));
            painter_.setPen(outline ? pen : QPen(Qt::NoPen));
            painter_.drawEllipse(box);
            continue;
        }
        // Clockwise in descriptions, counter-clockwise in sixteenths of a degree for the painter.
        const int from = 360 - desc->endAngle_;
        int to = 360 - desc->startAngle_;
        if (to < from)
            to += 360;
        if (fill) {
            painter_.setPen(Qt::NoPen);
            painter_.setBrush(brush);
            painter_.drawPie(box, from * 16, (to - from) * 16);
        }
        if (outline) {
            painter_.setPen(pen);
            painter_.setBrush(Qt::NoBrush);
            painter_.drawArc(box, from * 16, (to - from) * 16);
        }
    }
}

void QtGraphicPrimitivesRenderer::renderMulti(const LineDescription* descs, unsigned int count)
{
    if (!active_)
        return;
    for (const LineDescription* desc = descs; desc != descs + count; ++desc) {
        const bool dotted = desc->lineStyle_ == LineDescription::eDotted;
        soften(antialias_ && !dotted && !isAxisAligned(*desc));
        if (dotted)
            setDottedPen(toQColor(desc->colour_));
        else
            setSolidPen(toQColor(desc->colour_), desc->lineWidth_);
        painter_.drawLine(placeOf(*desc));
    }
}

void QtGraphicPrimitivesRenderer::setDottedPen(const QColor& colour)
{
    QPen pen(colour);
    pen.setDashPattern({1.0, applicationRatio()});
    painter_.setPen(pen);
}

// Setting a pen costs more than most lines: one that is the same already is kept.
void QtGraphicPrimitivesRenderer::setSolidPen(const QColor& colour, int width)
{
    const QPen& current = painter_.pen();
    if (current.style() != Qt::SolidLine || current.width() != width || current.color() != colour)
        painter_.setPen(QPen(colour, width));
}

void QtGraphicPrimitivesRenderer::renderMulti(const BezierCurveDescription* descs,
                                              unsigned int count)
{
    if (!active_ || count == 0)
        return;
    soften(antialias_);
    for (const BezierCurveDescription* desc = descs; desc != descs + count; ++desc) {
        QPainterPath path(QPointF(desc->start_.x, desc->start_.y));
        path.cubicTo(desc->control1_.x, desc->control1_.y, desc->control2_.x, desc->control2_.y,
                     desc->end_.x, desc->end_.y);
        painter_.strokePath(path, QPen(toQColor(desc->colour_), desc->lineWidth_));
    }
}

void QtGraphicPrimitivesRenderer::renderMulti(const ImageDescriptionEx*, unsigned int) {}
