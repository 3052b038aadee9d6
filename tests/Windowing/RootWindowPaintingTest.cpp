#include "Windowing/WindowRig.h"

#include "OS/Mac/Windowing/QtRootWindowWidget.h"

#include "support/OutputCapture.h"

#include <OS/Primitives/RectDescription.h>

#include <QCoreApplication>
#include <QPointer>
#include <thread>

namespace {

const NormalisedRGB kRed(1, 0, 0);
const NormalisedRGB kGreen(0, 1, 0);
const NormalisedRGB kBlue(0, 0, 1);

class RootWindowPainting : public WindowTest
{
protected:
    RootWindowPainting()
    {
        handler->onPaint = [this](const auto&) { fill({0, 0, 2000, 2000}, kBlue); };
    }
};

// The number of a sub-window's destruction in the order of things.
class Counted : public QWidget
{
public:
    Counted(QWidget* parent, int& destroyed) : QWidget(parent), destroyed_(destroyed) {}
    ~Counted() override { ++destroyed_; }

private:
    int& destroyed_;
};

} // namespace

TEST_F(RootWindowPainting, TheHandlerDrawsStraightIntoTheWindow)
{
    open();
    EXPECT_EQ(pixelAt(5, 5), 0x0000FFu);
    EXPECT_EQ(pixelAt(395, 295), 0x0000FFu);
}

TEST_F(RootWindowPainting, TheHandlerGetsTheDamagedRectangle)
{
    open();
    widget()->update(QRect(10, 20, 30, 40));
    EXPECT_EQ(waitForLines("paint", 1).front(), "paint 10 20 40 60");
}

TEST_F(RootWindowPainting, BatchesAreDrawnInOrderAndTheHandlerIsNotAsked)
{
    open();
    auto first = window->getPrimitivesRenderer(false);
    auto second = window->getPrimitivesRenderer(false);
    RectDescription rect;
    rect.rect_ = {10, 10, 60, 60};
    rect.topColour_ = rect.bottomColour_ = kGreen;
    second->render(rect); // recorded first, delivered last
    rect.rect_ = {20, 20, 70, 70};
    rect.topColour_ = rect.bottomColour_ = kRed;
    first->render(rect);
    EXPECT_EQ(pixelAt(15, 15), 0x0000FFu) << "nothing shows before the renderer is released";

    first.reset();
    second.reset();
    ASSERT_TRUE(waitForPixel(15, 15, 0x00FF00));
    EXPECT_EQ(pixelAt(30, 30), 0x00FF00u) << "the second lies over the first";
    EXPECT_EQ(pixelAt(65, 65), 0xFF0000u);
    EXPECT_EQ(pixelAt(100, 100), 0x0000FFu) << "the rest of the picture stays";
    settle();
    EXPECT_TRUE(events->lines("paint").empty());
}

TEST_F(RootWindowPainting, ABatchFollowsItsClipAndItsAntialiasing)
{
    open();
    auto renderer = window->getPrimitivesRenderer(true);
    renderer->setClipRegion(manager.createRegion({{0, 0, 20, 20}, {40, 0, 60, 20}}));
    RectDescription rect;
    rect.rect_ = {0, 0, 100, 100};
    rect.topColour_ = rect.bottomColour_ = kGreen;
    renderer->render(rect);
    renderer.reset();
    ASSERT_TRUE(waitForPixel(50, 10, 0x00FF00));
    EXPECT_EQ(pixelAt(30, 10), 0x0000FFu);
    EXPECT_EQ(pixelAt(10, 30), 0x0000FFu);
}

TEST_F(RootWindowPainting, BatchesOfAWindowThatLostItsPictureAreFollowedByThePaint)
{
    open();
    fill({0, 0, 10, 10}, kGreen);
    widget()->resize(500, 350);
    ASSERT_TRUE(waitForPixel(490, 340, 0x0000FF));
    EXPECT_FALSE(events->lines("window 1").empty());
}

TEST_F(RootWindowPainting, AWindowWithoutAHandlerIsBlackAndNotWhateverWasInMemory)
{
    open();
    window->setEventHandler(nullptr);
    widget()->resize(450, 320);
    EXPECT_TRUE(waitForPixel(440, 310, 0x000000));
}

TEST_F(RootWindowPainting, DrawingForAWindowThatCannotBeSeenStaysBounded)
{
    auto args = usualArgs();
    args.visible = false;
    open(args);
    for (int i = 0; i < 4096; ++i)
        fill({0, 0, 5, 5}, kGreen);
    int released = 0;
    {
        struct Region final : iRegion
        {
            explicit Region(int& count) : count_(count) {}
            ~Region() override { ++count_; }
            Tq::Rectangle<int> getBounds() const override { return {}; }
            std::uint32_t getUniqueID() const override { return 0; }
            bool isRectangular() const override { return true; }
            bool contains(const XY<int>&) const override { return false; }
            void translate(int, int) override {}
            Tq::Ptr<iRegion> clone() const override { return nullptr; }
            int& count_;
        };
        auto renderer = window->getPrimitivesRenderer(false);
        renderer->setClipRegion(new Region(released));
        RectDescription rect;
        renderer->render(rect);
    }
    EXPECT_EQ(released, 1) << "the queue was emptied";
    widget()->show();
    ASSERT_TRUE(waitForPixel(200, 150, 0x0000FF)) << "and the handler paints when the window comes";
}

TEST_F(RootWindowPainting, ARendererKeptAfterThePaintDrawsNothing)
{
    Tq::Ptr<iGraphicPrimitivesRenderer> kept;
    handler->onPaint = [&](const auto&) {
        fill({0, 0, 2000, 2000}, kBlue);
        kept = window->getPrimitivesRenderer(false);
    };
    open();
    const std::string errors = [&] {
        OutputCapture capture(OutputCapture::eStderr);
        RectDescription rect;
        rect.rect_ = {0, 0, 100, 100};
        kept->render(rect);
        widget()->update();
        settle();
        return capture.text();
    }();
    EXPECT_EQ(errors, "");
    EXPECT_EQ(pixelAt(50, 50), 0x0000FFu);
    kept.reset();
}

TEST_F(RootWindowPainting, EventsThatFloodInWhilePaintingDoNotPaintInsideThePaint)
{
    int depth = 0;
    int deepest = 0;
    bool flooded = false;
    handler->onPaint = [&](const auto&) {
        deepest = std::max(deepest, ++depth);
        if (!std::exchange(flooded, true)) {
            std::thread flood([&] {
                for (int i = 0; i < 2000; ++i)
                    window->postUserMessage();
            });
            flood.join();
            widget()->update();
            widget()->resize(420, 310);
            for (int i = 0; i < 20; ++i)
                manager.despatchPendingEvents();
        }
        fill({0, 0, 2000, 2000}, kBlue);
        --depth;
    };
    OutputCapture capture(OutputCapture::eStderr);
    open();
    ASSERT_TRUE(waitFor([&] { return widget()->width() == 420 && pixelAt(410, 300) == 0x0000FF; }));
    EXPECT_EQ(deepest, 1);
    EXPECT_EQ(capture.text(), "");
}

TEST_F(RootWindowPainting, ALoopRunInsideThePaintPaintsAfterwards)
{
    open();
    int depth = 0;
    int deepest = 0;
    int paints = 0;
    handler->onPaint = [&](const auto&) {
        deepest = std::max(deepest, ++depth);
        if (++paints == 1) {
            widget()->update();
            QCoreApplication::processEvents();
        }
        fill({0, 0, 2000, 2000}, kRed);
        --depth;
    };
    widget()->update();
    ASSERT_TRUE(waitFor([&] { return paints == 2; }));
    EXPECT_EQ(deepest, 1);
    EXPECT_TRUE(waitForPixel(10, 10, 0xFF0000));
}

TEST_F(RootWindowPainting, PostsUserMessagesFromAnyThread)
{
    open();
    std::thread other([&] {
        for (int i = 0; i < 3; ++i)
            window->postUserMessage();
    });
    other.join();
    EXPECT_EQ(waitForLines("message", 3).size(), 3u);
}

TEST_F(RootWindowPainting, ASubWindowLivesUntilThePaintIsOver)
{
    open();
    int destroyed = 0;
    Tq::Ptr<QWidget> child(new Counted(widget(), destroyed));
    window->queueSubWindowForDeletion(child);
    child.reset();
    settle();
    EXPECT_EQ(destroyed, 0);
    fill({200, 200, 210, 210}, kGreen);
    EXPECT_TRUE(waitForPixel(205, 205, 0x00FF00));
    EXPECT_TRUE(waitFor([&] { return destroyed == 1; }));
}

TEST_F(RootWindowPainting, ASubWindowThatIsStillQueuedGoesWithTheWindow)
{
    open();
    int destroyed = 0;
    window->queueSubWindowForDeletion(Tq::Ptr<QWidget>(new Counted(widget(), destroyed)));
    window.reset();
    manager.shutdown();
    EXPECT_EQ(destroyed, 1);
}

TEST_F(RootWindowPainting, AWindowReleasedInOneOfItsEventsGoesAfterIt)
{
    open();
    const QPointer<QWidget> gone(widget());
    handler->answer = [&](const std::string& kind) {
        if (kind == "message") {
            window.reset();
            manager.shutdown();
        }
        return iEventHandler::eContinue;
    };
    window->postUserMessage();
    EXPECT_TRUE(waitFor([&] { return gone.isNull(); }));
}

TEST_F(RootWindowPainting, AWindowMayBeRealisedAnewInOneOfItsEvents)
{
    open();
    const QPointer<QWidget> old(widget());
    handler->answer = [&](const std::string& kind) {
        if (kind == "message") {
            auto args = usualArgs();
            args.eventHandler = events;
            window->realize(args);
        }
        return iEventHandler::eContinue;
    };
    window->postUserMessage();
    ASSERT_TRUE(waitFor([&] { return old.isNull(); }));
    EXPECT_TRUE(waitForPixel(10, 10, 0x0000FF));
}

TEST_F(RootWindowPainting, HasNoPixelsToLock)
{
    open();
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(window->lock()); }),
              "assertion failed false at OS/Mac/QtRootWindow line 280\n");
}
