#include "OpenGLThreads/RecordingTarget.h"

#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "Primitives/Recorder.h"
#include "support/BackgroundThread.h"

#include <gtest/gtest.h>

namespace {

using Calls = std::vector<std::string>;

class PlainImage final : public iImageBase
{
};

ImageDescriptionEx imageEx()
{
    ImageDescriptionEx image;
    image.image_ = new PlainImage;
    return image;
}

class GLBackBufferGuardTest : public ::testing::Test
{
protected:
    ~GLBackBufferGuardTest() override { QtGLWindowUpdater::instance().clear(); }

    Tq::Ptr<GLBackBufferGuard> buffer() { return new GLBackBufferGuard(&target, {320, 200}); }
    /// What was drawn once the updater has done all.
    Calls drawn()
    {
        class Marker final : public iExecutable
        {
        public:
            explicit Marker(Gate& gate) : gate_(gate) {}
            void execute() override { gate_.open(); }

        private:
            Gate& gate_;
        };
        Gate done;
        QtGLWindowUpdater::instance().queue(new Marker(done));
        done.wait();
        return log.calls();
    }

    CallLog log;
    RecordingRenderer::Use use{log};
    RecordingTarget target{log};
};

TEST_F(GLBackBufferGuardTest, IsAnImageOfTheGPU)
{
    const auto back = buffer();
    EXPECT_EQ(back->getSize(), (XY<int>(320, 200)));
    EXPECT_EQ(back->getLocation(), iImage::eOnGPU);
    EXPECT_EQ(back->getBitsPerPixel(), 32);
    EXPECT_EQ(back->getFormat(), 3);
    EXPECT_FALSE(back->createCompatibleImage({10, 10}));
}

TEST_F(GLBackBufferGuardTest, QueuesNothingWhenNothingWasDrawn)
{
    buffer().reset();
    auto finalOnly = buffer();
    finalOnly->setFinalImage(imageEx());
    finalOnly.reset();
    auto asked = buffer();
    asked->getPrimitivesRenderer(true)->setClipRegion(nullptr);
    asked.reset();
    auto noImage = buffer();
    noImage->setFinalImage(ImageDescriptionEx());
    noImage->getPrimitivesRenderer(true);
    noImage.reset();
    EXPECT_EQ(drawn(), Calls());
}

TEST_F(GLBackBufferGuardTest, DrawsWhatAllItsRenderersRecordedAndTheFinalImageLast)
{
    auto back = buffer();
    back->setFinalImage(imageEx());
    const auto first = back->getPrimitivesRenderer(true);
    const auto second = back->getPrimitivesRenderer(false);
    second->render(numbered(1));
    first->setClipRegion(new CountedRegion);
    first->render(LineDescription());
    second->render(numbered(2));
    EXPECT_EQ(drawn(), Calls()) << "before the release";
    back.reset();
    EXPECT_EQ(drawn(), (Calls{"begin", "renderer", "rect 1", "clip", "line", "rect 2", "image ex",
                              "renderer gone", "end"}));
}

TEST_F(GLBackBufferGuardTest, DrawsTheFinalImageAloneOnceARendererWasAskedFor)
{
    auto back = buffer();
    back->setFinalImage(imageEx());
    back->getPrimitivesRenderer(true);
    back.reset();
    EXPECT_EQ(drawn(), (Calls{"begin", "renderer", "image ex", "renderer gone", "end"}));
}

TEST_F(GLBackBufferGuardTest, IgnoresRenderersThatOutliveIt)
{
    auto back = buffer();
    const auto renderer = back->getPrimitivesRenderer(true);
    renderer->render(numbered(1));
    back.reset();
    renderer->render(numbered(2));
    const auto calls = drawn();
    renderer->render(numbered(3));
    EXPECT_EQ(calls, (Calls{"begin", "renderer", "rect 1", "renderer gone", "end"}));
}

TEST_F(GLBackBufferGuardTest, DrawsOnNothingThatHasGone)
{
    auto shortLived = std::make_unique<RecordingTarget>(log);
    Tq::Ptr<GLBackBufferGuard> drawnOn(new GLBackBufferGuard(shortLived.get(), {10, 10}));
    const auto renderer = drawnOn->getPrimitivesRenderer(true);
    renderer->render(numbered(1));
    Tq::Ptr<GLBackBufferGuard> fresh(new GLBackBufferGuard(shortLived.get(), {10, 10}));
    shortLived.reset();
    drawnOn.reset();
    fresh->getPrimitivesRenderer(true)->render(numbered(2));
    fresh.reset();
    EXPECT_EQ(drawn(), Calls());
}

TEST(QtGLWidgetPrimitivesBatch, DoesNothingWithoutATargetOrAList)
{
    CallLog log;
    const RecordingRenderer::Use use(log);
    RecordingTarget target(log);
    const RectDescription rect = numbered(1);
    Tq::Ptr<QtGLWidgetPrimitivesBatch> nowhere(new QtGLWidgetPrimitivesBatch(nullptr));
    nowhere->push_back(&rect, 1, nullptr);
    EXPECT_FALSE(nowhere->draw());
    Tq::Ptr<QtGLWidgetPrimitivesBatch> empty(new QtGLWidgetPrimitivesBatch(&target));
    EXPECT_FALSE(empty->draw());
    EXPECT_EQ(log.calls(), Calls());
}

TEST(QtGLWidgetPrimitivesBatch, IsDrawnAsOftenAsItIsExecuted)
{
    CallLog log;
    const RecordingRenderer::Use use(log);
    RecordingTarget target(log);
    const RectDescription rects[] = {numbered(1), numbered(2)};
    Tq::Ptr<QtGLWidgetPrimitivesBatch> batch(new QtGLWidgetPrimitivesBatch(&target));
    batch->push_back(rects, 2, nullptr);
    batch->push_back<RectDescription>(nullptr, 0, nullptr);
    EXPECT_TRUE(batch->draw());
    target.visible = false;
    EXPECT_FALSE(batch->draw()) << "cannot be seen";
    const Calls once{"begin", "renderer", "rect 1", "rect 2", "renderer gone", "end"};
    Calls twice = once;
    twice.insert(twice.end(), once.begin(), once.end());
    EXPECT_EQ(log.calls(), twice);
    target.ready = false;
    EXPECT_FALSE(batch->draw()) << "the bracket is closed all the same";
    twice.insert(twice.end(), {"begin", "end"});
    EXPECT_EQ(log.calls(), twice);
}

// Frames come from many threads while targets go: what the updater finds is alive, or left alone.
TEST(QtGLWindowUpdater, DrawsFramesOfManyThreadsWhileTargetsComeAndGo)
{
    constexpr int kRounds = 30;
    constexpr int kThreads = 3;
    CallLog log;
    const RecordingRenderer::Use use(log);
    for (int round = 0; round < kRounds; ++round) {
        auto target = std::make_unique<RecordingTarget>(log);
        Gate start;
        // What a thread needs outlives the target; the target itself may be gone when it releases.
        std::atomic<int> ready{0};
        BackgroundThreads threads(kThreads, [&, raw = target.get()] {
            std::vector<Tq::Ptr<GLBackBufferGuard>> buffers;
            for (int i = 0; i < 4; ++i) {
                buffers.push_back(new GLBackBufferGuard(raw, {1, 1}));
                buffers.back()->getPrimitivesRenderer(true)->render(numbered(i));
            }
            ++ready;
            start.wait();
            buffers.clear();
        });
        ASSERT_TRUE(waitUntil([&] { return ready == kThreads; }));
        start.open();
        target->getState()->end();
        QtGLWindowUpdater::instance().clear();
        target.reset();
        threads.join();
        QtGLWindowUpdater::instance().clear();
    }
    EXPECT_EQ(log.count("begin"), log.count("end"));
    EXPECT_EQ(log.count("renderer"), log.count("renderer gone"));
}

TEST(QtGLWindowUpdater, RunsUnderItsName)
{
    class Naming final : public iExecutable
    {
    public:
        Naming(std::string& name, Gate& done) : name_(name), done_(done) {}
        void execute() override
        {
            char text[64] = {};
            pthread_getname_np(pthread_self(), text, sizeof text);
            name_ = text;
            done_.open();
        }

    private:
        std::string& name_;
        Gate& done_;
    };
    std::string name;
    Gate done;
    QtGLWindowUpdater::instance().queue(new Naming(name, done));
    done.wait();
    EXPECT_EQ(name, "QtGLWindowUpdat") << "as much as the kernel keeps";
}

} // namespace
