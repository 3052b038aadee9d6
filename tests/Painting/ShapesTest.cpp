// What QtGraphicPrimitivesRenderer draws of rectangles, ellipses, lines and curves.
#include "Painting/Canvas.h"
#include "support/ImageCompare.h"

#include <QLinearGradient>
#include <QPainterPath>
#include <gtest/gtest.h>

#include <limits>

namespace {

constexpr QRgb kGround = Canvas::kGround;

RectDescription rect(const Tq::Rectangle<int>& area, const NormalisedRGB& top,
                     const NormalisedRGB& bottom)
{
    RectDescription desc;
    desc.rect_ = area;
    desc.topColour_ = top;
    desc.bottomColour_ = bottom;
    return desc;
}
RectDescription rect(const Tq::Rectangle<int>& area, const NormalisedRGB& colour)
{
    return rect(area, colour, colour);
}

LineDescription line(XY<int> from, XY<int> to, const NormalisedRGB& colour, int width = 1)
{
    LineDescription desc;
    desc.start_ = from;
    desc.end_ = to;
    desc.colour_ = colour;
    desc.lineWidth_ = width;
    return desc;
}

const NormalisedRGB kRed{1, 0, 0}, kGreen{0, 1, 0}, kWhite{1, 1, 1};

// The pixels that differ from the ground, as a box with its right and bottom outside.
Tq::Rectangle<int> touched(const Canvas& canvas)
{
    QRegion region;
    for (int y = 0; y < canvas.pixels().height(); ++y)
        for (int x = 0; x < canvas.pixels().width(); ++x)
            if (canvas.at(x, y) != kGround)
                region += QRect(x, y, 1, 1);
    const QRect box = region.boundingRect();
    return {box.left(), box.top(), box.right() + 1, box.bottom() + 1};
}

} // namespace

TEST(Rectangles, AreFilledUpToTheirRightAndBottomEdge)
{
    Canvas canvas;
    canvas.draw(rect({3, 4, 10, 9}, kRed));
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{3, 4, 10, 9}));
    EXPECT_EQ(canvas.at(3, 4), 0xFFFF0000);
    EXPECT_EQ(canvas.at(9, 8), 0xFFFF0000);
}

TEST(Rectangles, WithSwappedEdgesStartAtTheirLeftAndTop)
{
    Canvas canvas;
    canvas.draw(rect({20, 20, 10, 15}, kRed));
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{20, 20, 30, 25}));
}

TEST(Rectangles, ReplaceWhatIsThereWithTheirAlpha)
{
    Canvas canvas;
    canvas.draw(rect({0, 0, 4, 4}, {1, 1, 1, 0.5f}));
    EXPECT_EQ(qAlpha(canvas.at(1, 1)), 127);
}

TEST(Rectangles, OfTwoColoursFadeStraightDown)
{
    Canvas actual, expected;
    actual.draw(rect({5, 5, 40, 45}, {1, 0.5f, 0}, {0, 0.25f, 1, 0.5f}));
    expected.paint([](QPainter& painter) {
        QLinearGradient gradient(5, 5, 5, 45);
        gradient.setColorAt(0, QColor(255, 127, 0));
        gradient.setColorAt(1, QColor(0, 63, 255, 127));
        painter.fillRect(QRect(5, 5, 35, 40), gradient);
    });
    EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), "gradient"));
    EXPECT_EQ(actual.at(5, 20), actual.at(39, 20));
    EXPECT_GT(qRed(actual.at(10, 6)), qRed(actual.at(10, 44)));
}

TEST(Rectangles, WhoseColoursDifferOnlyInAlphaAreGradientsToo)
{
    Canvas canvas;
    canvas.draw(rect({0, 0, 10, 40}, {1, 1, 1, 1}, {1, 1, 1, 0}));
    EXPECT_NEAR(qAlpha(canvas.at(5, 1)), 250, 5);
    EXPECT_NEAR(qAlpha(canvas.at(5, 20)), 127, 6);
    EXPECT_NEAR(qAlpha(canvas.at(5, 38)), 8, 6);
}

TEST(Rectangles, FarOutsideOrWithoutAreaDrawNothingOrWhatIsInside)
{
    constexpr int kMin = std::numeric_limits<int>::min();
    constexpr int kMax = std::numeric_limits<int>::max();
    Canvas canvas;
    for (const Tq::Rectangle<int>& area : {Tq::Rectangle<int>{5, 5, 5, 20},
                                           {kMax - 10, 0, kMax, 10},
                                           {kMin, kMin, kMin + 5, kMin + 5}})
        canvas.draw(rect(area, kRed));
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{0, 0, 0, 0}));
    canvas.draw(rect({kMin, kMin, kMax, kMax}, kRed));
    canvas.draw(rect({-1000, -1000, kMax, kMax}, kRed, kGreen));
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{0, 0, 64, 48}));
}

TEST(Rectangles, AreAsLargeInPixelsAsTheScaleSays)
{
    Canvas canvas(32, 24, 2);
    canvas.draw(rect({3, 4, 10, 9}, kRed));
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{6, 8, 20, 18}));
}

TEST(AlphaRectangles, BlendByTheirModeAndIgnoreTheirBottomColour)
{
    const struct
    {
        int mode;
        QRgb result; // of half-transparent white on the ground, as stored: premultiplied
    } cases[] = {
        {AlphaRectDescription::eBlendOver, 0xFF878F9F},
        {AlphaRectDescription::eBlendOverToo, 0xFF878F9F},
        {AlphaRectDescription::eBlendCopy, 0x7F7F7F7F},
        {77, 0x7F7F7F7F}, // leaves the renderer's own: replace
    };
    for (const auto& c : cases) {
        AlphaRectDescription desc;
        desc.rect_ = {0, 0, 20, 20};
        desc.topColour_ = {1, 1, 1, 0.9f}; // its own alpha does not count
        desc.bottomColour_ = kRed;
        desc.alpha_ = 0.5f;
        desc.blendMode_ = c.mode;
        Canvas canvas;
        canvas.draw(desc);
        for (const QPoint& point : {QPoint(1, 1), QPoint(1, 18)}) {
            const QRgb got = canvas.at(point.x(), point.y());
            EXPECT_NEAR(qRed(got), qRed(c.result), 1) << c.mode;
            EXPECT_NEAR(qBlue(got), qBlue(c.result), 1) << c.mode;
            EXPECT_NEAR(qAlpha(got), qAlpha(c.result), 1) << c.mode;
        }
    }
}

TEST(AlphaRectangles, LeaveTheirBlendingUntilImagesAreDrawn)
{
    AlphaRectDescription over;
    over.rect_ = {0, 0, 1, 1};
    const RectDescription translucent = rect({10, 10, 20, 20}, {1, 1, 1, 0.5f});
    Canvas blended, replaced;
    blended.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.render(over);
        renderer.render(translucent);
    });
    EXPECT_EQ(qAlpha(blended.at(15, 15)), 255);
    replaced.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.render(over);
        renderer.renderMulti(static_cast<const ImageDescription*>(nullptr), 0); // resets
        renderer.render(translucent);
    });
    EXPECT_EQ(qAlpha(replaced.at(15, 15)), 127);
}

TEST(Ellipses, AgreeWithThePainterInEveryStyleAndAngle)
{
    const struct
    {
        const char* name;
        int style, width, start, end;
        std::function<void(QPainter&, const QRectF&, const QPen&)> expected;
    } cases[] = {
        {"ellipse-filled", 0, 0, 0, 360,
         [](QPainter& p, const QRectF& box, const QPen&) {
             p.setPen(Qt::NoPen);
             p.drawEllipse(box);
         }},
        {"ellipse-outlined", 1, 3, 0, 360,
         [](QPainter& p, const QRectF& box, const QPen& pen) {
             p.setPen(pen);
             p.setBrush(Qt::NoBrush);
             p.drawEllipse(box);
         }},
        {"ellipse-both", 2, 4, 0, 360,
         [](QPainter& p, const QRectF& box, const QPen& pen) {
             p.setPen(pen);
             p.drawEllipse(box);
         }},
        {"pie-lower-right", 2, 2, 0, 90, // clockwise from three o'clock
         [](QPainter& p, const QRectF& box, const QPen& pen) {
             p.setPen(Qt::NoPen);
             p.drawPie(box, 270 * 16, 90 * 16);
             p.setPen(pen);
             p.setBrush(Qt::NoBrush);
             p.drawArc(box, 270 * 16, 90 * 16);
         }},
        {"arc-almost-round", 1, 2, 0, 359,
         [](QPainter& p, const QRectF& box, const QPen& pen) {
             p.setPen(pen);
             p.setBrush(Qt::NoBrush);
             p.drawArc(box, 16, 359 * 16);
         }},
        {"pie-across-zero", 0, 0, 300, 30,
         [](QPainter& p, const QRectF& box, const QPen&) {
             p.setPen(Qt::NoPen);
             p.drawPie(box, 330 * 16, 90 * 16);
         }},
        {"ellipse-of-no-style", 5, 4, 0, 360,
         [](QPainter& p, const QRectF& box, const QPen&) {
             p.setPen(Qt::NoPen);
             p.setBrush(Qt::NoBrush);
             p.drawEllipse(box);
         }},
    };
    for (const auto& c : cases)
        for (const bool antialias : {false, true}) {
            EllipseDescription desc;
            desc.rect_ = {4, 4, 60, 44};
            desc.fillStyle_ = c.style;
            desc.lineWidth_ = static_cast<std::uint16_t>(c.width);
            desc.startAngle_ = static_cast<std::int16_t>(c.start);
            desc.endAngle_ = static_cast<std::int16_t>(c.end);
            desc.fillColour_ = kGreen;
            desc.lineColour_ = kWhite;
            Canvas actual, expected;
            actual.draw(desc, antialias);
            expected.paint([&](QPainter& painter) {
                painter.setRenderHint(QPainter::Antialiasing, antialias);
                painter.setBrush(QColor(0, 255, 0));
                const double half = c.width / 2.0;
                c.expected(painter, QRectF(4 + half, 4 + half, 56 - c.width, 40 - c.width),
                           QPen(Qt::white, c.width));
            });
            EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), c.name));
        }
}

TEST(Ellipses, KeepTheirOutlineInsideTheirBoxAndPiesInTheirQuarter)
{
    EllipseDescription desc;
    desc.rect_ = {10, 6, 50, 42};
    desc.fillStyle_ = EllipseDescription::eOutline;
    desc.lineWidth_ = 6;
    desc.lineColour_ = kWhite;
    Canvas outline;
    outline.draw(desc, true);
    EXPECT_EQ(touched(outline), (Tq::Rectangle<int>{10, 6, 50, 42}));
    EXPECT_EQ(outline.at(30, 24), kGround);

    desc.fillStyle_ = EllipseDescription::eFill;
    desc.fillColour_ = kRed;
    desc.lineWidth_ = 0;
    desc.endAngle_ = 90;
    Canvas pie;
    pie.draw(desc);
    EXPECT_GE(touched(pie).left, 29);
    EXPECT_GE(touched(pie).top, 23);
    EXPECT_EQ(pie.at(35, 29), 0xFFFF0000);
}

TEST(Lines, LieOneRowAboveTheirNominalY)
{
    for (const bool antialias : {false, true}) {
        Canvas canvas;
        canvas.draw(line({5, 10}, {20, 10}, kRed), antialias);
        EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{5, 9, 21, 10})) << antialias;
        EXPECT_EQ(canvas.at(12, 9), 0xFFFF0000) << "straight lines are never softened";
    }
}

TEST(Lines, AgreeWithThePainterInEveryDirectionAndWidth)
{
    const struct
    {
        const char* name;
        XY<int> from, to;
        int width;
    } cases[] = {
        {"line-diagonal", {5, 5}, {50, 40}, 1},
        {"line-thick", {5, 40}, {50, 8}, 5},
        {"line-vertical", {30, 4}, {30, 40}, 3},
        {"line-point", {10, 10}, {10, 10}, 4},
    };
    for (const auto& c : cases) {
        Canvas actual, expected;
        actual.draw(line(c.from, c.to, kWhite, c.width), true);
        expected.paint([&](QPainter& painter) {
            painter.setPen(QPen(Qt::white, c.width));
            painter.setRenderHint(QPainter::Antialiasing, c.from.x != c.to.x && c.from.y != c.to.y);
            painter.drawLine(c.from.x, c.from.y - 1, c.to.x, c.to.y - 1);
        });
        EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), c.name));
    }
}

TEST(Lines, BehindAStraightOneAreSoftenedAgain)
{
    Canvas together, alone;
    const LineDescription straight = line({0, 47}, {63, 47}, kRed);
    const LineDescription slanted = line({5, 5}, {50, 30}, kWhite, 2);
    together.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setAntialiasingEnabled(true);
        const LineDescription lines[] = {straight, slanted};
        renderer.renderMulti(lines, 2);
    });
    alone.draw(slanted, true);
    alone.draw(straight, true);
    EXPECT_TRUE(imagesAgree(together.pixels(), alone.pixels(), "line-after-straight"));
}

TEST(Lines, ThatAreDottedIgnoreTheirWidth)
{
    LineDescription dotted = line({4, 20}, {60, 20}, kWhite, 9);
    dotted.lineStyle_ = LineDescription::eDotted;
    Canvas canvas;
    canvas.draw(dotted, true);
    EXPECT_EQ(touched(canvas).top, 19);
    EXPECT_EQ(touched(canvas).bottom, 20);
    int drawn = 0;
    for (int x = 4; x < 60; ++x)
        drawn += canvas.at(x, 19) != kGround;
    EXPECT_GT(drawn, 20);
    EXPECT_LT(drawn, 40) << "every other pixel";
}

TEST(Curves, AgreeWithThePainterAndAreNeverFilled)
{
    BezierCurveDescription curve;
    curve.start_ = {4, 40};
    curve.control1_ = {10, -20};
    curve.control2_ = {50, -20};
    curve.end_ = {60, 40};
    curve.colour_ = kWhite;
    curve.lineWidth_ = 2;
    EllipseDescription leavesABrush;
    leavesABrush.rect_ = {0, 0, 2, 2};
    leavesABrush.fillColour_ = kRed;
    Canvas actual, expected;
    actual.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setAntialiasingEnabled(true);
        renderer.render(leavesABrush);
        renderer.render(curve);
    });
    expected.draw(leavesABrush, true).paint([](QPainter& painter) {
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath path(QPointF(4, 40));
        path.cubicTo(10, -20, 50, -20, 60, 40);
        painter.setPen(QPen(Qt::white, 2));
        painter.drawPath(path);
    });
    EXPECT_TRUE(imagesAgree(actual.pixels(), expected.pixels(), "curve"));
    EXPECT_EQ(actual.at(32, 30), kGround);
}

TEST(Renderer, WithoutATargetAcceptsEveryCall)
{
    QtGraphicPrimitivesRenderer renderer(Tq::Ptr<QImage>(), 1);
    renderer.setAntialiasingEnabled(true);
    renderer.setClipRegion(nullptr);
    renderer.render(rect({0, 0, 5, 5}, kRed));
    renderer.render(AlphaRectDescription());
    renderer.render(EllipseDescription());
    renderer.render(LineDescription());
    renderer.render(TextDescription(L"t", {}, {}, eTextDefault, nullptr));
    renderer.render(BezierCurveDescription());
    renderer.render(ImageDescription());
    renderer.render(ImageDescriptionEx());
}

TEST(Renderer, DrawsNothingForACountOfZero)
{
    Canvas canvas;
    canvas.draw([](iGraphicPrimitivesRenderer& renderer) {
        renderer.renderMulti(static_cast<const RectDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const EllipseDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const LineDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const TextDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const AlphaRectDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const BezierCurveDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const ImageDescription*>(nullptr), 0);
        renderer.renderMulti(static_cast<const ImageDescriptionEx*>(nullptr), 0);
    });
    EXPECT_EQ(touched(canvas), (Tq::Rectangle<int>{0, 0, 0, 0}));
}
