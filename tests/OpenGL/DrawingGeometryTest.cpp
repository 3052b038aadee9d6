// The quads that descriptions become, without GL.
#include "OS/Mac/OpenGL/Drawing/ClipRegion.h"
#include "OS/Mac/OpenGL/Drawing/EllipseGeometry.h"
#include "OS/Mac/OpenGL/Drawing/ImagePlacement.h"
#include "OS/Mac/OpenGL/Drawing/LineGeometry.h"
#include "OS/Mac/OpenGL/Drawing/RectGeometry.h"

#include <QPolygon>
#include <QRegion>
#include <gtest/gtest.h>
#include <limits>

using namespace GLDrawing;

namespace {

constexpr Box kVisible{0, 0, 100, 80};
constexpr Colour kWhite = 0xFFFFFFFF, kRed = 0xFF0000FF;

template <class V>
Box boxAround(const std::vector<V>& quads)
{
    Box box{1 << 30, 1 << 30, -(1 << 30), -(1 << 30)};
    for (V v : quads) {
        box.left = std::min(box.left, static_cast<int>(std::floor(placeX(v))));
        box.top = std::min(box.top, static_cast<int>(std::floor(placeY(v))));
        box.right = std::max(box.right, static_cast<int>(std::ceil(placeX(v))));
        box.bottom = std::max(box.bottom, static_cast<int>(std::ceil(placeY(v))));
    }
    return box;
}

// By the corners' cross products; quads may be triangles with a corner twice.
template <class V>
double areaOf(std::vector<V> quads)
{
    double sum = 0;
    for (std::size_t i = 0; i + 3 < quads.size(); i += 4) {
        double twice = 0;
        for (std::size_t k = 0; k < 4; ++k) {
            V &a = quads[i + k], &b = quads[i + (k + 1) % 4];
            twice += double(placeX(a)) * double(placeY(b)) - double(placeX(b)) * double(placeY(a));
        }
        sum += std::abs(twice) / 2;
    }
    return sum;
}

DrawingTarget target(double ratio = 1.0)
{
    DrawingTarget result;
    result.ratio = ratio;
    result.width = 100;
    result.height = 80;
    result.bounds = kVisible;
    return result;
}

} // namespace

TEST(RectQuads, EndAtTheNearestPixelEdges)
{
    struct
    {
        Tq::Rectangle<int> rect;
        double ratio;
        Box expected;
    } const cases[] = {
        {{1, 2, 5, 7}, 1.0, {1, 2, 5, 7}},
        {{5, 7, 1, 2}, 1.0, {5, 7, 9, 12}}, // turned round: from its left and top
        {{3, 2, 6, 5}, 1.25, {4, 3, 8, 6}}, // 3.75, 2.5, 7.5, 6.25
        {{1, 1, 2, 2}, 1.5, {2, 2, 3, 3}},
        {{1, 1, 1, 9}, 1.0, {1, 1, 1, 9}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(hardEdges(makeFill(c.rect, kRed, kRed, c.ratio, kVisible)), c.expected);
}

TEST(RectQuads, KeepTheirColoursWhenTheyReachFar)
{
    constexpr int kFar = 1'000'000'000;
    const Fill fill = makeFill({-kFar, -kFar, kFar, kFar}, 0xFF000000, 0xFF0000FE, 1.0, kVisible);
    std::vector<FillVertex> quads;
    addHardFill(quads, fill);
    ASSERT_EQ(quads.size(), 4u);
    const Box box = boxAround(quads);
    EXPECT_LE(box.left, 0);
    EXPECT_GE(box.bottom, 80);
    EXPECT_GT(box.top, -1000);
    for (const FillVertex& v : quads)
        EXPECT_EQ(channel(v.colour, 0), 127u) << "half way down the gradient";
}

TEST(RectQuads, CoverAsMuchAsTheirArea)
{
    // Widths and heights within one pixel, across an edge, and over several.
    const Tq::Rectangle<int> rects[] = {{0, 0, 1, 1}, {1, 1, 2, 2}, {3, 5, 7, 6}, {2, 2, 40, 30}};
    for (const double ratio : {1.25, 1.5, 0.4})
        for (const auto& rect : rects) {
            std::vector<FillVertex> quads;
            addSoftFill(quads, makeFill(rect, kWhite, kWhite, ratio, kVisible));
            double covered = 0;
            for (std::size_t i = 0; i < quads.size(); i += 4)
                covered += areaOf(std::vector(quads.begin() + std::ptrdiff_t(i),
                                              quads.begin() + std::ptrdiff_t(i) + 4)) *
                           channel(quads[i].colour, 3) / 255.0;
            const double expected = rect.width() * rect.height() * ratio * ratio;
            EXPECT_NEAR(covered, expected, expected * 0.01 + 0.01);
        }
}

TEST(LineQuads, StandOnThePixelsOfThePainter)
{
    struct
    {
        Point from, to;
        int width;
        double ratio;
        Box expected;
    } const cases[] = {
        {{4, 3}, {10, 3}, 1, 1.0, {4, 3, 11, 4}}, // both ends count
        {{10, 3}, {4, 3}, 0, 1.0, {4, 3, 11, 4}},
        {{3, 9}, {3, 4}, 2, 1.0, {2, 3, 4, 10}},
        {{4, 3}, {10, 3}, 3, 1.0, {3, 2, 12, 5}},
        {{5, 3.75}, {12.5, 3.75}, 0, 1.25, {5, 3, 13, 4}},
        {{5, 3.75}, {12.5, 3.75}, 1, 1.25, {4, 3, 13, 4}},
        {{7, 7}, {7, 7}, 1, 1.0, {7, 7, 8, 8}},
    };
    for (const auto& c : cases)
        EXPECT_EQ(axisAlignedLine(c.from, c.to, Stroke::of(c.width, c.ratio, false)), c.expected);
}

TEST(LineQuads, AreCutToWhatCanBeSeen)
{
    const Stroke stroke = Stroke::of(3, 1.0, true);
    std::vector<LineVertex> quads;
    addLine(quads, {-2e9, -2e9}, {2e9, 2e9}, stroke, kRed, kVisible);
    ASSERT_EQ(quads.size(), 4u);
    const Box box = boxAround(quads);
    EXPECT_GT(box.left, -100);
    EXPECT_LT(box.right, 300);
    quads.clear();
    addLine(quads, {-50, 200}, {300, 200}, stroke, kRed, kVisible);
    addLine(quads, {-30, 50}, {-400, 20}, stroke, kRed, kVisible);
    EXPECT_TRUE(quads.empty());
}

TEST(LineQuads, OfDotsTakeEveryOtherPixel)
{
    std::vector<LineVertex> quads;
    addDots(quads, {3, 3}, {12, 3}, 1.0, 1.0, kRed, kVisible);
    ASSERT_EQ(quads.size(), 4u * 5);
    for (std::size_t i = 0; i < 5; ++i)
        EXPECT_EQ(quads[4 * i].x, 3.0f + 2.0f * static_cast<float>(i));
    quads.clear();
    addDots(quads, {-2'000'000'000.0, 3}, {2'000'000'000.0, 3}, 1.0, 1.0, kRed, kVisible);
    EXPECT_LT(quads.size(), 4u * 60) << "only what can be seen";
    EXPECT_GT(quads.size(), 4u * 48);
}

TEST(CurveQuads, AreAsManyAsTheBendNeeds)
{
    const auto piecesOf = [](const Point(&points)[4]) {
        std::vector<LineVertex> pieces;
        addCurve(pieces, points, Stroke::of(1, 1, true), kRed, {-1000, -1000, 1000, 1000});
        return pieces.size() / 4;
    };
    const auto straight = piecesOf({{0, 0}, {10, 0}, {20, 0}, {30, 0}});
    const auto gentle = piecesOf({{0, 0}, {10, 5}, {20, 5}, {30, 0}});
    const auto sharp = piecesOf({{0, 0}, {0, 90}, {90, 90}, {90, 0}});
    EXPECT_LE(straight, 4u);
    EXPECT_LE(straight, gentle);
    EXPECT_LT(gentle, sharp);
    EXPECT_LE(piecesOf({{0, 0}, {1e9, 1e9}, {-1e9, 1e9}, {1, 0}}), 64u);

    std::vector<LineVertex> quads;
    addCurve(quads, {{5, 5}, {5, 5}, {5, 5}, {5, 5}}, Stroke::of(3, 1, true), kRed, kVisible);
    EXPECT_TRUE(quads.empty()) << "a curve of no length";
    addCurve(quads, {{10, 10}, {10, 60}, {80, 60}, {80, 10}}, Stroke::of(4, 1, true), kRed,
             kVisible);
    for (const LineVertex& v : quads) {
        EXPECT_TRUE(std::isfinite(v.x) && std::isfinite(v.y));
        EXPECT_NEAR(std::max(v.left, v.right), 5.0f, 1e-4f) << "the far edge of a width of 4";
        EXPECT_NEAR(std::min(v.left, v.right), 0.0f, 1e-4f) << "half a pixel out: not covered";
    }
    // Neighbours share their corners: no seam, no overlap.
    for (std::size_t i = 4; i + 3 < quads.size(); i += 4) {
        EXPECT_EQ(quads[i].x, quads[i - 3].x);
        EXPECT_EQ(quads[i + 3].y, quads[i - 2].y);
    }
}

TEST(EllipseQuads, FollowTheOutlineInAndOut)
{
    EllipseDescription desc;
    desc.rect_ = {10, 10, 50, 40};
    desc.lineWidth_ = 4;
    std::vector<EllipseVertex> quads;
    addEllipse(quads, Ellipse(desc, 1.0), EllipsePart::eBoth, kRed, kWhite, kVisible);
    ASSERT_EQ(quads.size(), 4u);
    EXPECT_FLOAT_EQ(quads[0].outerX, 1.0f / 20);
    EXPECT_FLOAT_EQ(quads[0].innerY, 1.0f / 11);

    quads.clear();
    addEllipse(quads, Ellipse(desc, 1.0), EllipsePart::eFill, kRed, kWhite, kVisible);
    EXPECT_FLOAT_EQ(quads[0].outerX, 1.0f / 18) << "a fill is inset as well";

    desc.lineWidth_ = 60; // inside out
    quads.clear();
    addEllipse(quads, Ellipse(desc, 1.0), EllipsePart::eOutline, kRed, kWhite, kVisible);
    ASSERT_EQ(quads.size(), 4u);
    EXPECT_LT(quads[0].innerX, 0.0f) << "no inside is left";
}

TEST(EllipseQuads, SpanWhatTheAnglesSay)
{
    struct
    {
        int start, end, from, degrees;
    } const cases[] = {{0, 360, 0, 360},     {0, 90, 270, 90}, {0, 359, 1, 359},
                       {200, 100, 260, 260}, {90, 90, 270, 0}, {90, 450, -90, 360}};
    for (const auto& c : cases) {
        EllipseDescription desc;
        desc.startAngle_ = static_cast<std::int16_t>(c.start);
        desc.endAngle_ = static_cast<std::int16_t>(c.end);
        const Span span(desc);
        EXPECT_EQ(span.degrees, c.degrees) << c.start << " to " << c.end;
        EXPECT_TRUE(span.isWhole() || span.from == c.from) << c.start << " to " << c.end;
    }
}

TEST(ClipRegions, CutQuadsWithoutGapOrOverlap)
{
    const QRegion star(QPolygon(QVector<QPoint>{{50, 2}, {75, 78}, {5, 30}, {95, 30}, {25, 78}}),
                       Qt::WindingFill);
    long pixels = 0;
    for (const QRect& rect : star)
        pixels += long(rect.width()) * rect.height();
    std::vector<FillVertex> quads, inside;
    addBox(quads, kVisible, kRed);
    ClipRegion(star, target()).cut(quads, inside);
    EXPECT_NEAR(areaOf(inside), double(pixels), 1e-3);

    // A slanted quad, in two halves and whole.
    std::vector<LineVertex> line, left, right, both;
    addLine(line, {20, 20}, {80, 60}, Stroke::of(9, 1, true), kRed, kVisible);
    const auto cutTo = [&](const QRegion& region, std::vector<LineVertex>& result) {
        ClipRegion(region, target()).cut(line, result);
    };
    // A second box far off makes it several.
    cutTo(QRegion(0, 0, 40, 79) + QRegion(98, 79, 1, 1), left);
    cutTo(QRegion(40, 0, 58, 79) + QRegion(0, 79, 1, 1), right);
    EXPECT_NEAR(areaOf(left) + areaOf(right), areaOf(line), 1e-2);
    EXPECT_LE(boxAround(left).right, 40);
    for (const LineVertex& v : left)
        EXPECT_NEAR(v.left + v.right, 10.0f, 1e-3f) << "the distances stay linear";
}

TEST(ClipRegions, LeaveTheColoursThatAGradientHasAtTheCut)
{
    std::vector<FillVertex> quads, inside;
    addBox(quads, {0, 0, 100, 80}, 0xFF000000, 0xFF0000A0);
    ClipRegion(QRegion(10, 20, 5, 40) + QRegion(30, 20, 5, 40), target()).cut(quads, inside);
    ASSERT_EQ(inside.size(), 8u);
    for (const FillVertex& v : inside)
        EXPECT_EQ(channel(v.colour, 0), v.y == 20.0f ? 40u : 120u);
}

TEST(ClipRegions, KnowWhatIsLeft)
{
    EXPECT_FALSE(ClipRegion(target()).isLimited());
    EXPECT_TRUE(ClipRegion(QRegion(), target()).isEmpty());
    EXPECT_TRUE(ClipRegion(QRegion(200, 0, 5, 5), target()).isEmpty()) << "beside the target";
    const ClipRegion one(QRegion(3, 2, 3, 3), target(1.25));
    EXPECT_FALSE(one.isSeveral());
    EXPECT_EQ(one.bounds(), (Box{4, 3, 8, 6}));
    EXPECT_TRUE(ClipRegion(QRegion(0, 0, 5, 5) + QRegion(9, 9, 5, 5), target()).isSeveral());
}

TEST(DrawingTargets, CountScissorsFromTheRightEnd)
{
    DrawingTarget window = target();
    window.left = 10;
    window.bottom = 20;
    EXPECT_EQ(window.toScissor({5, 0, 25, 30}), (std::array{15, 70, 20, 30}));
    window.firstRowAtBottom = true;
    EXPECT_EQ(window.toScissor({5, 0, 25, 30}), (std::array{15, 20, 20, 30}));
}

TEST(ImagePlacements, AreCutToTheImageAndToWhatCanBeSeen)
{
    // Twice as large, beginning before the image does.
    const ImagePlacement whole(Tq::Rectangle<int>{-5, 0, 15, 10}, {10, 10, 50, 30}, 1.0);
    const ImagePlacement cut = whole.within(XY<int>(10, 10));
    std::vector<ScaledImageVertex> quads;
    cut.addTo(quads);
    EXPECT_EQ(boxAround(quads), (Box{20, 10, 40, 30}));
    EXPECT_FLOAT_EQ(quads[0].left, 0.5f);
    EXPECT_FLOAT_EQ(quads[0].right, 9.5f);
    EXPECT_FALSE(cut.isOneToOne());

    const ImagePlacement seen =
        ImagePlacement(Tq::Rectangle<int>{0, 0, 10, 10}, {95, 75, 105, 85}, 1.0).within(kVisible);
    EXPECT_TRUE(seen.isOneToOne());
    EXPECT_EQ(seen.sourcePixels(), (Tq::Rectangle<int>{0, 0, 5, 5}));
    EXPECT_TRUE(ImagePlacement(Tq::Rectangle<int>{0, 0, 9, 9}, {200, 0, 209, 9}, 1.0)
                    .within(kVisible)
                    .isEmpty());
    EXPECT_FALSE(ImagePlacement(Tq::Rectangle<int>{0, 0, 8, 8}, {0, 0, 8, 8}, 1.25).isOneToOne());
    const float nan = std::numeric_limits<float>::quiet_NaN();
    using Rect = ImageDescriptionEx::Rect;
    EXPECT_TRUE(ImagePlacement(Rect{nan, 0, 1, 1}, Rect{0, 0, 1, 1}, 1.0).isEmpty());
}
