// Regions, and what a renderer and a replay do with them.
#include "OS/Mac/Painting/BatchRenderer.h"
#include "OS/Mac/Painting/QtRegion.h"
#include "Painting/Canvas.h"
#include "support/ImageCompare.h"
#include "support/OutputCapture.h"

#include <gtest/gtest.h>

namespace {

using R = Tq::Rectangle<int>;

constexpr const char* kTooMany =
    "assertion failed data.size() < kMaxSize at OS/Mac/QtRegion line 39\n";

// Squares of 4 pixels, 6 apart, in rows of 10.
std::vector<R> squares(int count)
{
    std::vector<R> result;
    for (int i = 0; i < count; ++i) {
        const int x = i % 10 * 6, y = i / 10 * 6;
        result.push_back({x, y, x + 4, y + 4});
    }
    return result;
}

RectDescription everything()
{
    RectDescription desc;
    desc.rect_ = {0, 0, 64, 64};
    desc.topColour_ = desc.bottomColour_ = {1, 1, 1};
    return desc;
}

int whitePixels(const Canvas& canvas)
{
    int count = 0;
    for (int y = 0; y < canvas.pixels().height(); ++y)
        for (int x = 0; x < canvas.pixels().width(); ++x)
            count += canvas.at(x, y) == 0xFFFFFFFF;
    return count;
}

// A region of somebody else's making.
class ForeignRegion final : public iRegion
{
public:
    R getBounds() const override { return {}; }
    std::uint32_t getUniqueID() const override { return 0; }
    bool isRectangular() const override { return false; }
    bool contains(const XY<int>&) const override { return false; }
    void translate(int, int) override {}
    Tq::Ptr<iRegion> clone() const override { return {}; }
};

} // namespace

TEST(QtRegion, HoldsUpTo16RectanglesAndReportsFrom16On)
{
    const struct
    {
        int count;
        int used;
        const char* printed;
    } cases[] = {{0, 0, ""}, {1, 1, ""}, {15, 15, ""}, {16, 16, kTooMany}, {100, 16, kTooMany}};
    for (const auto& c : cases) {
        Tq::Ptr<QtRegion> region;
        EXPECT_EQ(outputOf([&] { region = new QtRegion(squares(c.count)); }), c.printed) << c.count;
        Canvas canvas(64, 64);
        canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
            renderer.setClipRegion(region);
            renderer.render(everything());
        });
        EXPECT_EQ(whitePixels(canvas), c.used * 16) << c.count;
        EXPECT_EQ(region->isRectangular(), c.count == 1);
    }
}

TEST(QtRegion, TakesOverlappingRectanglesInAnyOrder)
{
    const QtRegion region(std::vector<R>{{20, 20, 30, 30}, {0, 0, 10, 10}, {5, 5, 25, 25}});
    EXPECT_EQ(region.getBounds(), (R{0, 0, 30, 30}));
    EXPECT_TRUE(region.contains({15, 15}));
    EXPECT_TRUE(region.contains({29, 29}));
    EXPECT_FALSE(region.contains({30, 29}));
    EXPECT_FALSE(region.contains({28, 2}));
}

TEST(QtRegion, MovesAndCopiesIndependently)
{
    QtRegion region(R{2, 3, 10, 12});
    const Tq::Ptr<iRegion> copy = region.clone();
    EXPECT_NE(copy->getUniqueID(), region.getUniqueID());
    region.translate(0, 0);
    EXPECT_EQ(region.getBounds(), (R{2, 3, 10, 12}));
    region.translate(3, -2);
    EXPECT_EQ(region.getBounds(), (R{5, 1, 13, 10}));
    EXPECT_TRUE(region.contains({12, 9}));
    EXPECT_FALSE(region.contains({4, 5}));
    EXPECT_EQ(copy->getBounds(), (R{2, 3, 10, 12}));
    EXPECT_TRUE(region.isRectangular());
    EXPECT_EQ(QtRegion(QRegion()).getBounds(), (R{0, 0, 0, 0}));
}

TEST(Clipping, HoldsUntilItEndsAndFollowsARegionThatMoved)
{
    const Tq::Ptr<iRegion> region = new QtRegion(R{0, 0, 8, 8});
    Canvas canvas(64, 64);
    canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setClipRegion(region);
        renderer.render(everything());
        region->translate(20, 20);
        renderer.setClipRegion(region);
        renderer.render(everything());
    });
    EXPECT_EQ(whitePixels(canvas), 2 * 64);
    canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setClipRegion(region);
        renderer.setClipRegion(nullptr);
        renderer.render(everything());
    });
    EXPECT_EQ(whitePixels(canvas), 64 * 64);
}

TEST(Clipping, IsInLogicalPixelsOnAScaledTarget)
{
    Canvas canvas(64, 64, 2);
    canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setClipRegion(new QtRegion(R{4, 4, 8, 8}));
        renderer.render(everything());
    });
    EXPECT_EQ(whitePixels(canvas), 8 * 8);
    EXPECT_EQ(canvas.at(8, 8), 0xFFFFFFFF);
}

TEST(Clipping, WithAForeignRegionIsReportedAndLeftAsItWas)
{
    Canvas canvas(64, 64);
    EXPECT_EQ(outputOf([&] {
                  canvas.draw([&](iGraphicPrimitivesRenderer& renderer) {
                      renderer.setClipRegion(new QtRegion(R{0, 0, 8, 8}));
                      renderer.setClipRegion(new ForeignRegion);
                      renderer.render(everything());
                  });
              }),
              "assertion failed rgnImpl at OS/Mac/QtGraphicPrimitivesRenderer line 496\n");
    EXPECT_EQ(whitePixels(canvas), 64);
}

TEST(Replay, DrawsWhatDirectDrawingDrawsEachBatchUnderItsOwnClip)
{
    RectDescription under = everything(), over = everything();
    under.topColour_ = {1, 0, 0};
    over.rect_ = {10, 10, 50, 50};
    EllipseDescription ellipse;
    ellipse.rect_ = {0, 0, 64, 64};
    ellipse.fillColour_ = {0, 1, 0};
    const Tq::Ptr<iRegion> left = new QtRegion(R{0, 0, 30, 64});
    const Tq::Ptr<iRegion> spots = new QtRegion(squares(15));

    Canvas direct(64, 64), replayed(64, 64);
    direct.draw([&](iGraphicPrimitivesRenderer& renderer) {
        renderer.setAntialiasingEnabled(true);
        renderer.render(under);
        renderer.setClipRegion(left);
        renderer.render(over);
        renderer.setClipRegion(spots);
        renderer.render(ellipse);
    });
    const Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
    list->push_back(&under, 1, nullptr);
    list->push_back(&over, 1, left);
    list->push_back(&ellipse, 1, spots);
    {
        BatchRenderer renderer(replayed.image->image(), 1);
        renderer.setAntialiasingEnabled(true);
        list->process(renderer);
    }
    EXPECT_TRUE(imagesAgree(replayed.pixels(), direct.pixels(), "replay"));
}
