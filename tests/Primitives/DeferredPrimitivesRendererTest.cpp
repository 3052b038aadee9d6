#include "OS/Mac/Primitives/DeferredPrimitivesRenderer.h"

#include "Primitives/Recorder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using testing::ElementsAre;

namespace {

using Call = Recorder::Call;

struct Target final : iGraphicPrimitivesBatchRenderer
{
    void render(const PrimitivesBatch& batch) override { batches.push_back(batch); }

    std::vector<PrimitivesBatch> batches;
};

std::vector<Call> callsOf(const PrimitivesBatch& batch)
{
    Recorder recorder;
    batch.list->process(recorder);
    return recorder.calls;
}

} // namespace

TEST(DeferredPrimitivesRenderer, DeliversEverythingAtItsReleaseAndNothingBefore)
{
    Target target;
    const Tq::Ptr<iRegion> region = new CountedRegion;
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer = new DeferredPrimitivesRenderer(&target);
    renderer->render(RectDescription());
    renderer->setClipRegion(region);
    const std::vector<LineDescription> lines(4);
    renderer->renderMulti(lines.data(), 4);
    renderer->render(EllipseDescription());
    renderer->setClipRegion(nullptr);
    renderer->render(AlphaRectDescription());
    renderer->render(BezierCurveDescription());
    renderer->render(ImageDescription());
    renderer->render(ImageDescriptionEx());
    renderer->render(TextDescription(L"t", {}, {}, eTextDefault, nullptr));
    EXPECT_TRUE(target.batches.empty());
    renderer.reset();

    ASSERT_EQ(target.batches.size(), 1u);
    const iRegion* clip = region.get();
    EXPECT_THAT(callsOf(target.batches[0]),
                ElementsAre(Call{"Rect", 1, nullptr}, Call{"Line", 4, clip},
                            Call{"Ellipse", 1, clip}, Call{"AlphaRect", 1, nullptr},
                            Call{"Bezier", 1, nullptr}, Call{"Image", 1, nullptr},
                            Call{"ImageEx", 1, nullptr}, Call{"Text", 1, nullptr}));
    target.batches.clear();
    EXPECT_EQ(region.useCount(), 1);
}

TEST(DeferredPrimitivesRenderer, AsksForAntialiasingUnlessItWasSwitchedOffLast)
{
    const auto antialiasAfter = [](std::initializer_list<bool> switches) {
        Target target;
        {
            DeferredPrimitivesRenderer renderer(&target);
            for (const bool on : switches)
                renderer.setAntialiasingEnabled(on);
        }
        return target.batches.at(0).antialias;
    };
    EXPECT_TRUE(antialiasAfter({}));
    EXPECT_FALSE(antialiasAfter({false}));
    EXPECT_TRUE(antialiasAfter({false, true}));
}

TEST(DeferredPrimitivesRenderer, DeliversAnEmptyRecordingToo)
{
    Target target;
    Tq::Ptr<iGraphicPrimitivesRenderer>(new DeferredPrimitivesRenderer(&target)).reset();
    ASSERT_EQ(target.batches.size(), 1u);
    EXPECT_TRUE(target.batches[0].list->empty());
}

TEST(DeferredPrimitivesRendererDeathTest, AnExceptionOfItsTargetEndsTheProcess)
{
    struct Thrower final : iGraphicPrimitivesBatchRenderer
    {
        void render(const PrimitivesBatch&) override { throw 1; }
    };
    EXPECT_DEATH(
        {
            Thrower thrower;
            try {
                Tq::Ptr<iGraphicPrimitivesRenderer>(new DeferredPrimitivesRenderer(&thrower))
                    .reset();
            } catch (...) {
            }
        },
        "");
}
