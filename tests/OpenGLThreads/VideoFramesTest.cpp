#include "OpenGLThreads/RecordingTarget.h"
#include "support/BackgroundThread.h"

#include "OS/Mac/OpenGL/Widgets/FrameScheduler.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "OS/Mac/OpenGL/Widgets/VideoFrames.h"

#include <OS/Threads/iWaitable.h>

#include <gtest/gtest.h>

namespace {

constexpr unsigned int kHalfAMinute = 30'000;

class VideoFramesTest : public ::testing::Test
{
protected:
    ~VideoFramesTest() override
    {
        release();
        frames->close();
        QtGLWindowUpdater::instance().clear();
        FrameScheduler::instance().shutdown();
    }

    static void show(VideoFrames& to, int number)
    {
        to.makeBackBuffer(nullptr)->getPrimitivesRenderer(true)->render(numbered(number));
    }
    /// Keeps the updater busy until release().
    void hold()
    {
        class Holding final : public iExecutable
        {
        public:
            Holding(Gate& begun, Gate& end) : begun_(begun), end_(end) {}
            void execute() override
            {
                begun_.open();
                end_.wait();
            }

        private:
            Gate& begun_;
            Gate& end_;
        };
        held = true;
        QtGLWindowUpdater::instance().queue(new Holding(begun, end));
        begun.wait();
    }
    void release()
    {
        if (held)
            end.open();
    }
    bool presented(const VideoFrames& of, std::uint64_t count)
    {
        return waitUntil([&] { return of.getStatistics().presented >= count; });
    }
    std::vector<std::string> rects() const
    {
        std::vector<std::string> result;
        for (const auto& call : log.calls())
            if (call.rfind("rect", 0) == 0)
                result.push_back(call);
        return result;
    }

    CallLog log;
    RecordingRenderer::Use use{log};
    RecordingTarget target{log};
    Tq::Ptr<VideoFrames> frames{new VideoFrames(target)};
    Gate begun, end;
    bool held = false;
};

using Rects = std::vector<std::string>;

TEST_F(VideoFramesTest, QueuesTwoAndDropsTheThird)
{
    hold();
    for (int i = 1; i <= 5; ++i)
        show(*frames, i);
    EXPECT_EQ(frames->getQueued(), 2u);
    EXPECT_EQ(frames->getStatistics().dropped, 3u);
    EXPECT_EQ(frames->waitForRoom(0), iWaitable::eWaitTimedOut);
    BackgroundThread waiter([&] { return frames->waitForRoom(kHalfAMinute); });
    waiter.waitUntilBlocked();
    release();
    EXPECT_EQ(waiter.result(), iWaitable::eWaitSignalled);
    ASSERT_TRUE(presented(*frames, 2));
    EXPECT_EQ(rects(), (Rects{"rect 1", "rect 2"}));
    EXPECT_EQ(frames->getQueued(), 0u);
}

TEST_F(VideoFramesTest, CountsEveryFrameOnce)
{
    show(*frames, 1);
    ASSERT_TRUE(presented(*frames, 1));
    const auto first = frames->getStatistics();
    EXPECT_GT(first.presentedAtMs, 0.0);
    EXPECT_EQ(first.intervalMs, 0.0);
    show(*frames, 2);
    ASSERT_TRUE(presented(*frames, 2));
    const auto second = frames->getStatistics();
    EXPECT_DOUBLE_EQ(second.intervalMs, second.presentedAtMs - first.presentedAtMs);
    EXPECT_GE(second.drawMs, 0.0);
    EXPECT_GE(second.waitMs, 0.0);

    target.visible = false;
    show(*frames, 3);
    ASSERT_TRUE(waitUntil([&] { return frames->getStatistics().dropped == 1; }));
    frames->makeBackBuffer(nullptr); // nothing drawn: no frame
    EXPECT_EQ(frames->getStatistics().presented, 2u);
    frames->resetStatistics();
    EXPECT_EQ(frames->getStatistics().presented, 0u);
    EXPECT_EQ(frames->getStatistics().presentedAtMs, 0.0);
}

TEST_F(VideoFramesTest, DropsFramesThatTheUpdatersQueueLost)
{
    hold();
    show(*frames, 1);
    show(*frames, 2);
    BackgroundThread clearing([] { QtGLWindowUpdater::instance().clear(); });
    clearing.waitUntilBlocked();
    EXPECT_EQ(frames->getQueued(), 2u) << "until the batch in progress has ended";
    release();
    clearing.join();
    EXPECT_EQ(frames->getQueued(), 0u);
    EXPECT_EQ(frames->getStatistics().dropped, 2u);
    show(*frames, 3);
    EXPECT_TRUE(presented(*frames, 1));
}

TEST_F(VideoFramesTest, DropsFramesWhileItDoesNotAcceptThem)
{
    hold();
    show(*frames, 1);
    frames->setAccepting(false);
    EXPECT_EQ(frames->getQueued(), 0u);
    show(*frames, 2);
    EXPECT_EQ(frames->getStatistics().dropped, 2u);
    frames->setAccepting(true);
    show(*frames, 3);
    release();
    ASSERT_TRUE(presented(*frames, 1));
    EXPECT_EQ(rects(), Rects{"rect 3"});
}

TEST_F(VideoFramesTest, RefusesEverythingOnceClosed)
{
    hold();
    show(*frames, 1);
    show(*frames, 2);
    BackgroundThread waiter([&] { return frames->waitForRoom(iWaitable::kNoTimeOut); });
    waiter.waitUntilBlocked();
    const auto kept = frames->makeBackBuffer(nullptr);
    frames->close();
    EXPECT_EQ(waiter.result(), iWaitable::eWaitFailed);
    kept->getPrimitivesRenderer(true)->render(numbered(3));
    frames->setAccepting(true);
    show(*frames, 4);
    release();
    EXPECT_EQ(frames->getQueued(), 0u);
    EXPECT_EQ(frames->getStatistics().dropped, 3u);
    EXPECT_EQ(frames->getMeasures().size, (XY<int>(0, 0)));
    EXPECT_EQ(rects(), Rects());
}

TEST_F(VideoFramesTest, WaitsForTheFrameThatIsBeingDrawn)
{
    target.block();
    show(*frames, 1);
    ASSERT_TRUE(waitUntil([&] { return frames->getQueued() == 0; }));
    BackgroundThread closing([&] { frames->close(); });
    closing.waitUntilBlocked();
    EXPECT_FALSE(closing.finished());
    target.unblock();
    closing.join();
    EXPECT_EQ(frames->getStatistics().presented, 1u);
}

// The second frame of the one is due in a quarter of an hour.
TEST_F(VideoFramesTest, LetsNoWindowsWaitDelayAnother)
{
    const Tq::Ptr<VideoFrames> other(new VideoFrames(target));
    ASSERT_TRUE(frames->setRate(1, 900));
    show(*frames, 1);
    ASSERT_TRUE(presented(*frames, 1));
    show(*frames, 2);
    for (int i = 10; i < 15; ++i) {
        ASSERT_EQ(other->waitForRoom(kHalfAMinute), iWaitable::eWaitSignalled);
        show(*other, i);
    }
    EXPECT_TRUE(presented(*other, 5));
    EXPECT_EQ(frames->getQueued(), 1u);
    show(*frames, 3);
    show(*frames, 4);
    EXPECT_EQ(frames->getQueued(), 2u);
    EXPECT_EQ(frames->getStatistics().dropped, 1u);
    other->close();
}

TEST_F(VideoFramesTest, ShowsPacedFramesInOrder)
{
    ASSERT_TRUE(frames->setRate(1000, 1));
    Rects expected;
    for (int i = 0; i < 40; ++i) {
        ASSERT_EQ(frames->waitForRoom(kHalfAMinute), iWaitable::eWaitSignalled);
        if (i % 10 == 9)
            frames->setRate(i % 20 == 9 ? 0 : 500, 1);
        show(*frames, i);
        expected.push_back("rect " + std::to_string(i));
    }
    ASSERT_TRUE(presented(*frames, 40));
    EXPECT_EQ(rects(), expected);
    EXPECT_EQ(frames->getStatistics().dropped, 0u);
}

// Every frame of several threads ends as exactly one of the two, whatever the window does.
TEST_F(VideoFramesTest, LosesNoFrameInTheTumult)
{
    constexpr int kThreads = 3, kEach = 150;
    frames->setRate(1000, 1);
    std::atomic<int> finished{0};
    BackgroundThreads threads(kThreads, [&] {
        for (int i = 0; i < kEach; ++i) {
            show(*frames, i);
            frames->waitForRoom(1);
            frames->getStatistics();
        }
        ++finished;
    });
    for (int turn = 0; finished < kThreads; ++turn) {
        frames->setAccepting(turn % 3 != 0);
        if (turn % 5 == 0)
            QtGLWindowUpdater::instance().clear();
        std::this_thread::yield();
    }
    threads.join();
    frames->close();
    const auto s = frames->getStatistics();
    EXPECT_EQ(s.presented + s.dropped, static_cast<std::uint64_t>(kThreads * kEach));
}

} // namespace
