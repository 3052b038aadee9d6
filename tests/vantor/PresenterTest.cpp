#include "Play/Presenter.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <mutex>
#include <thread>

namespace Vantor {
namespace {

/// What reaches a window: the images of its frames.
struct Screen
{
    void add(const iImageBase* image)
    {
        const std::lock_guard held(guard);
        shown.push_back(image);
    }
    std::size_t count() const
    {
        const std::lock_guard held(guard);
        return shown.size();
    }

    mutable std::mutex guard;
    std::vector<const iImageBase*> shown;
};

class FrameRecorder final : public iGraphicPrimitivesRenderer
{
public:
    explicit FrameRecorder(Screen& screen) : screen_(screen) {}
    ~FrameRecorder() override { screen_.add(image_); }

    void setClipRegion(Tq::Ptr<iRegion>) override {}
    void setAntialiasingEnabled(bool) override {}
    void renderMulti(const RectDescription*, unsigned int) override {}
    void renderMulti(const EllipseDescription*, unsigned int) override {}
    void renderMulti(const LineDescription*, unsigned int) override {}
    void renderMulti(const TextDescription*, unsigned int) override
    {
        ADD_FAILURE() << "where GL draws there is no text";
    }
    void renderMulti(const AlphaRectDescription*, unsigned int) override {}
    void renderMulti(const BezierCurveDescription*, unsigned int) override {}
    void renderMulti(const ImageDescription* images, unsigned int count) override
    {
        if (!image_ && count > 0)
            image_ = images[0].image_.get();
    }
    void renderMulti(const ImageDescriptionEx*, unsigned int) override {}

private:
    Screen& screen_;
    const iImageBase* image_ = nullptr;
};

class FakeBuffer final : public iVideoWindowBackBuffer
{
public:
    FakeBuffer(Screen& screen, const XY<int>& size) : screen_(screen), size_(size) {}
    XY<int> getSize() const override { return size_; }
    int getBitsPerPixel() const override { return 32; }
    eFormat getFormat() const override { return eARGB8; }
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool) override
    {
        return new FrameRecorder(screen_);
    }
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>&) const override { return {}; }

private:
    Screen& screen_;
    XY<int> size_;
};

/// A window that shows each frame at once, or is as busy as it is told.
class FakeWindow final : public iVideoWindow
{
public:
    explicit FakeWindow(Screen& screen) : screen_(screen) {}

    Tq::Ptr<iVideoWindowBackBuffer> getBackBuffer(const ImageDescriptionEx*) override
    {
        return new FakeBuffer(screen_, getSize());
    }
    bool setFrameRate(unsigned int, unsigned int) override { return true; }
    unsigned int getQueuedFrames() const override { return queued; }
    unsigned int waitForRoom(unsigned int) const override { return iWaitable::eWaitSignalled; }
    Statistics getStatistics() const override
    {
        Statistics statistics;
        const std::uint64_t all = screen_.count();
        statistics.dropped = std::min<std::uint64_t>(all, losesFirst);
        statistics.presented = all - statistics.dropped;
        return statistics;
    }
    void resetStatistics() override {}
    XY<int> getSize() const override { return {width, 360}; }
    double getPixelRatio() const override { return 1.5; }
    XY<int> getPosition() const override { return {}; }
    void setGeometry(const XY<int>&, const XY<int>&) override {}
    bool isVisible() const override { return true; }
    void show() override {}
    void hide() override {}
    bool setRootWindow(const Tq::Ptr<iRootWindow>&) override { return false; }
    bool isFullscreen() const override { return false; }
    bool setMonitor(const XY<int>&) override { return false; }
    void close() override { closed = true; }
    bool isClosed() const override { return closed; }

    std::atomic<unsigned int> queued{0};
    std::atomic<int> width{640};
    std::atomic<bool> closed{false};
    std::uint64_t losesFirst = 0; ///< frames, because it is not on the screen yet

private:
    Screen& screen_;
};

class PresenterTest : public testing::Test
{
protected:
    PresenterTest()
    {
        OS()->mediaServices()->createHostSurfaceFont(L"", 12, 0); // brings the application up
        showing_.window = window_;
        showing_.edit = std::make_shared<Edit>();
        showing_.transport = Transport([this] { return now_.load(); });
        showing_.transport.setLength(1000);
    }

    Tq::Ptr<iImage> make(const FrameRequest& request, int frame)
    {
        Tq::Ptr<iImage> image = OS()->mediaServices()->createHostSurface({2, 2});
        const std::lock_guard held(guard_);
        made_[image.get()] = {frame, request.size};
        kept_.push_back(image); // so that no address is used twice
        return image;
    }
    struct Frame
    {
        int number;
        Point size;
    };
    /// The frame shown last; -1 when it had no picture.
    Frame last()
    {
        const std::lock_guard held(screen_.guard);
        const std::lock_guard alsoHeld(guard_);
        const auto found = screen_.shown.empty() ? made_.end() : made_.find(screen_.shown.back());
        return found == made_.end() ? Frame{-1, {}} : found->second;
    }
    static bool soon(const std::function<bool()>& condition)
    {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!condition()) {
            if (std::chrono::steady_clock::now() > end)
                return false;
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return true;
    }
    bool shows(int frame)
    {
        return soon([&] { return last().number == frame; });
    }

    Screen screen_;
    Tq::Ptr<FakeWindow> window_{new FakeWindow(screen_)};
    std::atomic<double> now_{1000.0};
    Showing showing_;
    std::mutex guard_;
    std::map<const iImageBase*, Frame> made_;
    std::vector<Tq::Ptr<iImage>> kept_;
    Presenter presenter_{
        [this](int, const FrameRequest& request, int frame) { return make(request, frame); }};
};

TEST_F(PresenterTest, APictureThatStandsStillIsShownOnce)
{
    showing_.transport.seek(7);
    presenter_.show(showing_);
    ASSERT_TRUE(shows(7));
    ASSERT_TRUE(soon([&] { return presenter_.facts().settled; }));
    const std::size_t shown = screen_.count();
    for (int i = 0; i < 20; ++i)
        presenter_.show(showing_);
    EXPECT_EQ(screen_.count(), shown) << "the same again is nothing new";
    showing_.choices.timeCode = true;
    presenter_.show(showing_);
    EXPECT_TRUE(soon([&] { return screen_.count() > shown; }));
    EXPECT_EQ(presenter_.facts().dropped, 0u);
}

TEST_F(PresenterTest, APictureThatTheWindowLosesIsShownAgain)
{
    window_->losesFirst = 3;
    presenter_.show(showing_);
    EXPECT_TRUE(soon([&] { return presenter_.facts().settled; }));
    EXPECT_EQ(screen_.count(), 4u);
    EXPECT_EQ(presenter_.facts().presented, 1u);
    EXPECT_EQ(presenter_.facts().dropped, 0u) << "nobody missed anything";
}

TEST_F(PresenterTest, FramesAreMadeAsLargeAsTheyAreSeen)
{
    presenter_.show(showing_);
    ASSERT_TRUE(shows(0));
    EXPECT_EQ(last().size, Point(924, 519)) << "616 x 346 logical pixels";
    showing_.choices.zoom = ViewerZoom::eDouble;
    presenter_.show(showing_);
    EXPECT_TRUE(soon([&] { return last().size == Point(1920, 1080); })) << "not finer than it is";
}

TEST_F(PresenterTest, TheClockDecidesWhichFrameIsShown)
{
    showing_.transport.seek(100);
    showing_.transport.shuttle(1);
    presenter_.show(showing_);
    ASSERT_TRUE(shows(100));
    for (int i = 1; i <= 10; ++i) {
        now_ = 1000.0 + i * 40.0;
        ASSERT_TRUE(shows(100 + i));
    }
    EXPECT_EQ(presenter_.facts().dropped, 0u);
    EXPECT_NEAR(presenter_.facts().rate, 25.0, 0.1);
    now_ = 1000.0 + 15 * 40.0;
    ASSERT_TRUE(shows(115));
    EXPECT_EQ(presenter_.facts().dropped, 4u) << "what is late is left out";
}

TEST_F(PresenterTest, AWindowThatIsBehindGetsTheFrameThatIsDueThen)
{
    showing_.transport.shuttle(1);
    presenter_.show(showing_);
    ASSERT_TRUE(shows(0));
    window_->queued = 1;
    now_ = 1000.0 + 3 * 40.0;
    std::this_thread::yield();
    now_ = 1000.0 + 4 * 40.0;
    window_->queued = 0;
    EXPECT_TRUE(shows(4));
    EXPECT_TRUE(soon([&] { return presenter_.facts().dropped == 3; }));
}

TEST_F(PresenterTest, AWindowOfAnotherSizeIsDrawnAgain)
{
    presenter_.show(showing_);
    ASSERT_TRUE(shows(0));
    window_->width = 320;
    showing_.transport.step(0);
    presenter_.show(showing_);
    EXPECT_TRUE(soon([&] { return last().size.x == 444; })) << last().size.x;
}

TEST_F(PresenterTest, AWindowThatClosesEndsIt)
{
    showing_.transport.shuttle(1);
    presenter_.show(showing_);
    ASSERT_TRUE(shows(0));
    window_->close();
    now_ = 5000.0;
    presenter_.show(Showing());
    EXPECT_GE(presenter_.facts().presented, 1u) << "what was shown is not forgotten";
}

} // namespace
} // namespace Vantor
