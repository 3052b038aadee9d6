#include "Primitives/Recorder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace {

using R = Tq::Rectangle<int>;
constexpr int kMin = std::numeric_limits<int>::min();
constexpr int kMax = std::numeric_limits<int>::max();

} // namespace

TEST(Descriptions, BoundsOfLinesAndCurvesHoldAllTheirPoints)
{
    LineDescription line;
    line.start_ = {10, -5};
    line.end_ = {2, 8};
    EXPECT_EQ(line.getBounds(), (R{2, -5, 10, 8}));

    BezierCurveDescription curve;
    curve.start_ = {0, 0};
    curve.end_ = {10, 10};
    curve.control1_ = {-20, 5};
    curve.control2_ = {5, 40};
    EXPECT_EQ(curve.getBounds(), (R{-20, 0, 10, 40}));
}

TEST(Descriptions, BoundsOfTextsReachFromTheAscentToTheDescent)
{
    TextDescription text(L"four", {100, 50}, {}, eTextDefault, new TenPixelFont);
    EXPECT_EQ(text.getBounds(), (R{100, 38, 140, 54}));
    text.font_.reset();
    EXPECT_EQ(text.getBounds(), (R{0, 0, 0, 0}));
}

TEST(Descriptions, ATextIsPlainAndOnNoBandUntilItIsToldOtherwise)
{
    const TextDescription text(L"t", {1, 2}, {0.5f, 0, 0}, eTextCentre | eTextTop, nullptr);
    EXPECT_EQ(text.backColour_, NormalisedRGB(0, 0, 0, 1));
    EXPECT_EQ(text.textStyle_, TextDescription::ePlain);
    EXPECT_EQ(text.highlightStart_, text.highlightEnd_);
    EXPECT_EQ(horizontalAlignment(text.alignment_), 2u);
    EXPECT_EQ(verticalAlignment(text.alignment_), 0u);
}

TEST(Descriptions, BoundsOfShadedImagesAreWidenedToWholePixels)
{
    const float huge = std::numeric_limits<float>::infinity();
    const struct
    {
        ImageDescriptionEx::Rect rect;
        R bounds;
    } cases[] = {
        {{0.5f, 0.5f, 10.2f, 10.2f}, {0, 0, 11, 11}},
        {{-0.5f, -1.0f, 3.0f, 3.0f}, {-1, -1, 3, 3}},
        {{-huge, -1e20f, 1e20f, huge}, {kMin, kMin, kMax, kMax}},
        {{std::nanf(""), 0, 1, 1}, {0, 0, 1, 1}},
    };
    for (const auto& c : cases) {
        ImageDescriptionEx image;
        image.destRect_ = c.rect;
        EXPECT_EQ(image.getBounds(), c.bounds) << c.rect.left << " " << c.rect.right;
    }
}

TEST(Descriptions, ClippingKeepsWhatBothHoldAndSaysWhetherThatIsAnything)
{
    const struct
    {
        R rect, clipRect, left;
        bool drawn;
    } cases[] = {
        {{0, 0, 10, 10}, {-5, -5, 20, 20}, {0, 0, 10, 10}, true},
        {{0, 0, 10, 10}, {3, 4, 5, 6}, {3, 4, 5, 6}, true},
        {{0, 0, 10, 10}, {5, -5, 20, 5}, {5, 0, 10, 5}, true},
        {{0, 0, 10, 10}, {20, 20, 30, 30}, {0, 0, 0, 0}, false},
        {{0, 0, 10, 10}, {10, 0, 20, 10}, {10, 0, 10, 10}, false}, // they touch
        {{5, 5, 5, 9}, {0, 0, 10, 10}, {5, 5, 5, 9}, false},
    };
    for (const auto& c : cases) {
        RectDescription desc;
        desc.rect_ = c.rect;
        desc.bottomColour_ = {1, 0, 0};
        EXPECT_EQ(clip(desc, c.clipRect), c.drawn);
        EXPECT_EQ(desc.rect_, c.left);
        EXPECT_EQ(desc.bottomColour_, NormalisedRGB(1, 0, 0));
    }
}

TEST(Descriptions, SizesOfTheWidestRectanglesStayInRange)
{
    const R widest{kMin, kMax, kMax, kMin};
    EXPECT_EQ(widest.width(), kMax);
    EXPECT_EQ(widest.height(), kMax);
    EXPECT_TRUE(widest.hasArea());
}

TEST(Descriptions, ColoursAreCutToTheirRangeAndTruncated)
{
    const struct
    {
        float component;
        int byte;
    } cases[] = {{0.0f, 0},   {1.0f, 255},        {0.999f, 254},      {0.5f, 127},      {-3.0f, 0},
                 {7.0f, 255}, {std::nanf(""), 0}, {1.0f / 255.0f, 1}, {0.5019608f, 128}};
    for (const auto& c : cases)
        EXPECT_EQ(NormalisedRGB::toByte(c.component), c.byte) << c.component;
}
