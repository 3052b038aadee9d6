#include "Primitives/Recorder.h"
#include "support/UnknowingEffect.h"

#include <OS/Primitives/GraphicPrimitivesList.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>
#include <stdexcept>
#include <thread>

using testing::ElementsAre;

namespace {

using Call = Recorder::Call;
using Holder = GraphicPrimitivesList::iPrimitiveDescHolder;

RectDescription rectAt(int x)
{
    RectDescription desc;
    desc.rect_ = {x, x + 1, x + 2, x + 3};
    desc.topColour_ = {0.25f, 0.5f, 0.75f, 0.125f};
    return desc;
}

TextDescription textOf(const LightweightString<wchar_t>& text, const Tq::Ptr<iFont>& font)
{
    return TextDescription(text, {1, 2}, {}, eTextDefault, font);
}

std::vector<Call> replay(const GraphicPrimitivesList& list)
{
    Recorder recorder;
    list.process(recorder);
    return recorder.calls;
}

// The address of a batch: what a client that keeps one has in hand.
Tq::Ptr<Holder> firstBatch(const GraphicPrimitivesList& list)
{
    Tq::Ptr<Holder> found;
    list.forEach([&](const Holder& batch) {
        if (!found)
            found = Tq::Ptr<Holder>(const_cast<Holder*>(&batch));
    });
    return found;
}

class CountedImage final : public iImageBase
{
};

} // namespace

TEST(GraphicPrimitivesList, ReplaysEveryTypeInRecordingOrderAsOftenAsWanted)
{
    const Tq::Ptr<iRegion> clip = new CountedRegion;
    const Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
    EXPECT_TRUE(list->empty());
    const std::vector<RectDescription> rects(3);
    const EllipseDescription ellipse;
    const std::vector<LineDescription> lines(2);
    const TextDescription text = textOf(L"a", nullptr);
    const AlphaRectDescription alphaRect;
    const BezierCurveDescription curve;
    const ImageDescription image;
    const ImageDescriptionEx shaded;
    list->push_back(rects.data(), 3, clip);
    list->push_back(rects.data(), 1, clip); // not merged with the one before
    list->push_back(&ellipse, 1, nullptr);
    list->push_back(lines.data(), 2, nullptr);
    list->push_back(&text, 1, clip);
    list->push_back<AlphaRectDescription>(nullptr, 0, clip); // an empty batch is one too
    list->push_back(&alphaRect, 1, nullptr);
    list->push_back(&curve, 1, nullptr);
    list->push_back(&image, 1, nullptr);
    list->push_back(&shaded, 1, clip);

    const iRegion* region = clip.get();
    const std::vector<Call> expected = {
        {"Rect", 3, region},       {"Rect", 1, region},    {"Ellipse", 1, nullptr},
        {"Line", 2, nullptr},      {"Text", 1, region},    {"AlphaRect", 0, region},
        {"AlphaRect", 1, nullptr}, {"Bezier", 1, nullptr}, {"Image", 1, nullptr},
        {"ImageEx", 1, region},
    };
    EXPECT_EQ(replay(*list), expected);
    EXPECT_EQ(replay(*list), expected);
    EXPECT_FALSE(list->empty());
}

TEST(GraphicPrimitivesList, KeepsEveryFieldOfBatchesShortAndLongInAnyMixture)
{
    std::mt19937 random(7);
    std::uniform_int_distribution<unsigned int> shortRun(0, 6), oneInTwenty(0, 19);
    GraphicPrimitivesList list;
    std::vector<RectDescription> rects;
    std::vector<LineDescription> lines;
    for (int batch = 0; batch < 2'000; ++batch) {
        const unsigned int count = oneInTwenty(random) ? shortRun(random) : 1'500;
        std::vector<RectDescription> newRects(count);
        std::vector<LineDescription> newLines(count);
        for (unsigned int i = 0; i < count; ++i) {
            newRects[i] = rectAt(static_cast<int>(random() % 100'000));
            newLines[i].end_ = {static_cast<int>(random() % 100'000), batch};
            newLines[i].lineReserved_ = batch;
        }
        list.push_back(newRects.data(), count, nullptr);
        list.push_back(newLines.data(), count, nullptr);
        rects.insert(rects.end(), newRects.begin(), newRects.end());
        lines.insert(lines.end(), newLines.begin(), newLines.end());
    }

    Recorder recorder;
    list.process(recorder);
    EXPECT_EQ(recorder.calls.size(), 4'000u);
    ASSERT_EQ(recorder.rects.size(), rects.size());
    ASSERT_EQ(recorder.lines.size(), lines.size());
    for (std::size_t i = 0; i < rects.size(); ++i) {
        ASSERT_EQ(recorder.rects[i].rect_, rects[i].rect_) << i;
        ASSERT_EQ(recorder.rects[i].topColour_, rects[i].topColour_) << i;
        ASSERT_EQ(recorder.lines[i].end_, lines[i].end_) << i;
        ASSERT_EQ(recorder.lines[i].lineReserved_, lines[i].lineReserved_) << i;
    }
}

TEST(GraphicPrimitivesList, CopiesTheDescriptionsAtTheCall)
{
    GraphicPrimitivesList list;
    RectDescription desc = rectAt(1);
    list.push_back(&desc, 1, nullptr);
    desc = rectAt(50);
    Recorder recorder;
    list.process(recorder);
    EXPECT_EQ(recorder.rects.at(0).rect_, rectAt(1).rect_);
}

TEST(GraphicPrimitivesList, RecordedObjectsTakeAndDropExactlyOneReferenceForEachPlaceTheyStandIn)
{
    const Tq::Ptr<iRegion> region = new CountedRegion;
    const Tq::Ptr<iFont> font = new TenPixelFont;
    const Tq::Ptr<iImageBase> image = new CountedImage;
    const Tq::Ptr<iShaderEffectBase> effect = new UnknowingEffect;
    const Tq::Ptr<iShaderParamValue> value = iShaderParamValue::makeFloat("Amount", 1.0f);
    {
        const Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
        {
            const std::vector<TextDescription> texts(3, textOf(L"abc", font));
            list->push_back(texts.data(), 3, region);
            ImageDescription plain;
            plain.image_ = image;
            list->push_back(&plain, 1, region);
            ImageDescriptionEx shaded;
            shaded.image_ = image;
            shaded.technique_.effect_ = effect;
            shaded.technique_.values_ = {value, value};
            list->push_back(&shaded, 1, nullptr);
        }
        EXPECT_EQ(region.useCount(), 1 + 2);
        EXPECT_EQ(font.useCount(), 1 + 3);
        EXPECT_EQ(image.useCount(), 1 + 2);
        EXPECT_EQ(effect.useCount(), 1 + 1);
        EXPECT_EQ(value.useCount(), 1 + 2);
        replay(*list);
        EXPECT_EQ(region.useCount(), 1 + 2) << "a replay keeps nothing";
    }
    EXPECT_EQ(region.useCount(), 1);
    EXPECT_EQ(font.useCount(), 1);
    EXPECT_EQ(image.useCount(), 1);
    EXPECT_EQ(effect.useCount(), 1);
    EXPECT_EQ(value.useCount(), 1);
}

TEST(GraphicPrimitivesList, ACopyCarriesItsSourcesCount)
{
    RectDescription desc = rectAt(0);
    *desc.refCount() = 5;
    GraphicPrimitivesList list;
    list.push_back(&desc, 1, nullptr);
    Recorder recorder;
    list.process(recorder);
    EXPECT_EQ(*recorder.rects.at(0).refCount(), 5);
}

TEST(GraphicPrimitivesList, ABatchThatSomebodyHoldsOutlivesItsList)
{
    const Tq::Ptr<iRegion> region = new CountedRegion;
    const Tq::Ptr<iFont> font = new TenPixelFont;
    Tq::Ptr<Holder> kept;
    {
        const Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
        const TextDescription text = textOf(L"kept", font);
        list->push_back(&text, 1, region);
        for (int i = 0; i < 5'000; ++i) // more pieces of memory, which go with the list
            list->push_back(&text, 1, region);
        kept = firstBatch(*list);
        EXPECT_EQ(kept.useCount(), 2);
    }
    EXPECT_EQ(kept.useCount(), 1);
    EXPECT_EQ(region.useCount(), 2);
    Recorder recorder;
    kept->process(recorder);
    EXPECT_EQ(recorder.texts.at(0), L"kept");
    kept.reset();
    EXPECT_EQ(region.useCount(), 1);
    EXPECT_EQ(font.useCount(), 1);
}

namespace {

int copiesUntilFailure;

// Recorded as a rectangle; its copy fails when the countdown reaches 0.
struct FragileRect : RectDescription
{
    explicit FragileRect(const Tq::Ptr<iFont>& share_) : share(share_) {}
    FragileRect(const FragileRect& other) : RectDescription(other), share(other.share)
    {
        if (copiesUntilFailure-- == 0)
            throw std::runtime_error("copy failed");
    }
    Tq::Ptr<iFont> share;
};

} // namespace

TEST(GraphicPrimitivesList, ABatchThatCannotBeCopiedLeavesNoTrace)
{
    const Tq::Ptr<iRegion> region = new CountedRegion;
    const Tq::Ptr<iFont> font = new TenPixelFont;
    GraphicPrimitivesList list;
    const RectDescription before = rectAt(1), after = rectAt(2);
    list.push_back(&before, 1, region);
    {
        copiesUntilFailure = 1'000;
        const std::vector<FragileRect> fragile(4, FragileRect(font));
        copiesUntilFailure = 2;
        EXPECT_THROW(list.push_back(fragile.data(), 4, region), std::runtime_error);
    }
    EXPECT_EQ(region.useCount(), 2);
    EXPECT_EQ(font.useCount(), 1);
    list.push_back(&after, 1, nullptr);
    EXPECT_THAT(replay(list), ElementsAre(Call{"Rect", 1, region.get()}, Call{"Rect", 1, nullptr}));
}

TEST(GraphicPrimitivesList, ABatchTooLargeForAnyMemoryIsRefusedAndNothingIsAppended)
{
    GraphicPrimitivesList list;
    const RectDescription desc;
    EXPECT_THROW(list.push_back(&desc, 0xFFFFFFFF, nullptr),
                 std::bad_alloc); // nothing is read before
    EXPECT_TRUE(list.empty());
}

TEST(GraphicPrimitivesList, ABatchsBoundsHoldAllItsDescriptions)
{
    const auto boundsOf = [](const std::vector<Tq::Rectangle<int>>& rectangles) {
        std::vector<RectDescription> descs(rectangles.size());
        for (std::size_t i = 0; i < rectangles.size(); ++i)
            descs[i].rect_ = rectangles[i];
        GraphicPrimitivesList list;
        list.push_back(descs.data(), static_cast<unsigned int>(descs.size()), nullptr);
        return firstBatch(list)->getBounds();
    };
    using R = Tq::Rectangle<int>;
    EXPECT_EQ(boundsOf({}), (R{0, 0, 0, 0}));
    EXPECT_EQ(boundsOf({{5, 6, 7, 8}}), (R{5, 6, 7, 8}));
    EXPECT_EQ(boundsOf({{5, 6, 7, 8}, {-3, 7, 6, 20}}), (R{-3, 6, 7, 20}));
    EXPECT_EQ(boundsOf({{10, 10, 0, 0}, {2, 2, 4, 12}}), (R{0, 0, 10, 12}))
        << "corners of any order";
}

TEST(GraphicPrimitivesList, IsFilledOnOneThreadAndReplayedAndReleasedOnAnother)
{
    const Tq::Ptr<iRegion> region = new CountedRegion;
    Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
    std::thread([&] {
        const RectDescription desc = rectAt(3);
        for (int i = 0; i < 1'000; ++i)
            list->push_back(&desc, 1, region);
    }).join();
    std::thread([handedOver = std::move(list)]() mutable {
        EXPECT_EQ(replay(*handedOver).size(), 1'000u);
        handedOver.reset();
    }).join();
    EXPECT_EQ(region.useCount(), 1);
}
