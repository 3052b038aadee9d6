#include "OpenGL/WidgetRig.h"
#include "support/BackgroundThread.h"
#include "support/EventRecorder.h"
#include "support/FreshProcess.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPool.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"
#include "OS/Mac/OpenGL/Widgets/VideoSurface.h"
#include "OS/Mac/Painting/QtImage.h"
#include "OS/Mac/Windowing/QtWindowManager.h"

#include <OS/Threads/iWaitable.h>
#include <OS/Windowing/iVideoWindow.h>

#include <QApplication>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>
#include <thread>

namespace {

constexpr unsigned int kHalfAMinute = 30'000;

// A root window that paints itself grey.
class GreyHandler final : public iEventHandler
{
public:
    explicit GreyHandler(Tq::Ptr<iRootWindow> window) : window_(window.get()) {}
    eRC handleMouse(const MouseEvent&) override { return eContinue; }
    eRC handleKey(const KeyEvent&) override { return eContinue; }
    eRC handlePaint(const PaintEvent&) override
    {
        const XY<int> size = window_->getSize();
        fill(*window_->getPrimitivesRenderer(false), {0, 0, size.x, size.y}, 0x808080);
        return eContinue;
    }
    eRC handleWindowEvent(const WindowEvent&) override { return eContinue; }
    eRC handleTimer(const TimerEvent&) override { return eContinue; }
    eRC handleFileDrop(const LightweightString<wchar_t>&) override { return eContinue; }
    eRC handleUserMessage(const UserMessage&) override { return eContinue; }

private:
    iRootWindow* window_; // outlives it
};

class VideoWindowTest : public ::testing::Test
{
protected:
    VideoWindowTest() { root = openRoot({10, 30}); }
    ~VideoWindowTest() override
    {
        video.reset();
        root.reset();
        managers.clear();
        QtGLWidgetPool::instance().shutdown();
        pump();
        EXPECT_EQ(trap.faults(), "");
        EXPECT_EQ(QtGLWidget::getLiveCount(), widgetsBefore);
    }

    Tq::Ptr<iRootWindow> openRoot(const XY<int>& position)
    {
        // A manager has one root window; these windows are let go before it.
        managers.push_back(std::make_unique<QtWindowManager>());
        Tq::Ptr<iRootWindow> made = managers.back()->createRootWindow();
        iRootWindow::InitArgs args;
        args.size = {300, 220}; // on the screen at every scale
        args.position = position;
        events = new EventRecorder(new GreyHandler(made));
        args.eventHandler = events;
        made->realize(args);
        EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(made), 299, 219) == 0x808080; }));
        return made;
    }
    /// The first one goes, with its widget.
    void closeRoot()
    {
        root.reset();
        managers.erase(managers.begin());
    }
    static QWidget* widgetOf(const Tq::Ptr<iRootWindow>& window)
    {
        return static_cast<QWidget*>(window->getID());
    }
    void open(const XY<int>& position = {20, 30}, const XY<int>& size = {160, 120})
    {
        video = managers.back()->createVideoWindow(position, size);
        ASSERT_TRUE(video);
        ASSERT_TRUE(waitFor([&] { return exposed(); }));
    }
    /// The newest GL widget.
    QtGLWidget* widget() const
    {
        QtGLWidget* found = nullptr;
        for (QWidget* one : QApplication::allWidgets())
            if (auto* gl = dynamic_cast<QtGLWidget*>(one); gl && !gl->isHidden())
                found = gl;
        return found;
    }
    bool exposed() const { return widget() && widget()->windowHandle()->isExposed(); }

    static void show(iVideoWindow& window, QRgb ground, QRgb quarter)
    {
        const auto buffer = window.getBackBuffer();
        const XY<int> size = buffer->getSize();
        const auto renderer = buffer->getPrimitivesRenderer(true);
        fill(*renderer, {0, 0, size.x, size.y}, ground);
        fill(*renderer, {0, 0, size.x / 2, size.y / 2}, quarter);
    }
    bool shows(QRgb ground, QRgb quarter)
    {
        return waitFor([&] { return showsFrame(*widget(), ground, quarter); });
    }

    FaultTrap trap;
    int widgetsBefore = QtGLWidget::getLiveCount();
    std::vector<std::unique_ptr<QtWindowManager>> managers;
    Tq::Ptr<EventRecorder> events;
    Tq::Ptr<iRootWindow> root;
    Tq::Ptr<iVideoWindow> video;
};

TEST_F(VideoWindowTest, ShowsFramesInItsRootWindow)
{
    open();
    EXPECT_TRUE(video->isVisible());
    EXPECT_FALSE(video->isFullscreen());
    EXPECT_EQ(video->getPosition(), (XY<int>(20, 30)));
    EXPECT_EQ(video->getSize(), (XY<int>(160, 120)));
    EXPECT_DOUBLE_EQ(video->getPixelRatio(), widgetOf(root)->devicePixelRatioF());
    show(*video, kRed, kGreen);
    EXPECT_TRUE(shows(kRed, kGreen));
    EXPECT_EQ(pixelAt(*widgetOf(root), 10, 10), 0x808080u);
    EXPECT_EQ(pixelAt(*widgetOf(root), 179, 149), kRed);
    EXPECT_EQ(pixelAt(*widgetOf(root), 181, 149), 0x808080u);
}

TEST_F(VideoWindowTest, NeedsARootWindowThatIsRealised)
{
    closeRoot();
    QtWindowManager manager;
    EXPECT_FALSE(manager.createVideoWindow({0, 0}, {10, 10}));
    const auto unrealised = manager.createRootWindow();
    EXPECT_FALSE(manager.createVideoWindow({0, 0}, {10, 10}));
}

TEST_F(VideoWindowTest, DrawsTheFinalImageOverEverything)
{
    open();
    const Tq::Ptr<QtImage> picture(new QtImage({8, 8}, QtImage::getDefaultFormat(), 1));
    fill(*picture->getPrimitivesRenderer(false), {0, 0, 8, 8}, kBlue);
    ImageDescriptionEx image;
    image.image_ = picture;
    image.sourceRect_ = {0, 0, 8, 8};
    image.destRect_ = {0, 0, 160, 120};
    image.blend_ = false;
    video->getBackBuffer(&image).reset(); // nothing else
    EXPECT_TRUE(shows(kBlue, kBlue));

    image.destRect_ = {0, 0, 80, 60};
    {
        const auto buffer = video->getBackBuffer(&image);
        fill(*buffer->getPrimitivesRenderer(true), {0, 0, 160, 120}, kRed);
    }
    EXPECT_TRUE(shows(kRed, kBlue));
}

TEST_F(VideoWindowTest, KeepsItsPictureWhenItIsHiddenAndMoved)
{
    open();
    show(*video, kRed, kGreen);
    ASSERT_TRUE(shows(kRed, kGreen));
    video->hide();
    EXPECT_FALSE(video->isVisible());
    EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(root), 100, 90) == 0x808080; }));
    show(*video, kBlue, kBlue);
    EXPECT_EQ(video->getStatistics().dropped, 1u);
    video->setGeometry({100, 90}, {160, 120});
    EXPECT_EQ(video->getPosition(), (XY<int>(100, 90)));
    video->show();
    EXPECT_TRUE(shows(kRed, kGreen));
    EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(root), 30, 40) == 0x808080; }));
    EXPECT_TRUE(video->isVisible());
}

TEST_F(VideoWindowTest, TakesItsNewSizeAtOnceForFrames)
{
    open();
    for (int turn = 0; turn < 12; ++turn) {
        const XY<int> size(60 + (turn * 67) % 200, 50 + (turn * 41) % 150);
        if (turn % 3 == 2)
            video->hide();
        video->setGeometry({turn, turn}, size);
        EXPECT_EQ(video->getSize(), size);
        video->show();
        const QRgb ground = turn % 2 ? kRed : kBlue;
        // A size that the window system sends late may lead to a drop: none here.
        show(*video, ground, kGreen);
        ASSERT_TRUE(shows(ground, kGreen)) << turn;
    }
    video->setGeometry({0, 0}, {0, -5});
    EXPECT_EQ(video->getSize(), (XY<int>(1, 1)));
}

TEST_F(VideoWindowTest, MovesIntoAnotherRootWindow)
{
    open();
    show(*video, kRed, kGreen);
    ASSERT_TRUE(shows(kRed, kGreen));
    const auto other = openRoot({325, 275});
    EXPECT_TRUE(video->setRootWindow(other));
    EXPECT_EQ(video->getPosition(), (XY<int>(20, 30)));
    EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(other), 30, 40) == kGreen; }));
    EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(root), 30, 40) == 0x808080; }));
    closeRoot();
    show(*video, kBlue, kRed);
    EXPECT_TRUE(shows(kBlue, kRed));
    EXPECT_FALSE(video->setRootWindow(nullptr));
}

TEST_F(VideoWindowTest, ClosesWithItsRootWindow)
{
    open();
    const auto buffer = video->getBackBuffer();
    closeRoot();
    EXPECT_TRUE(video->isClosed());
    EXPECT_FALSE(video->isVisible());
    EXPECT_EQ(video->getSize(), (XY<int>(0, 0)));
    fill(*buffer->getPrimitivesRenderer(true), {0, 0, 1, 1}, kRed);
    show(*video, kRed, kGreen);
    video->show();
    video->setGeometry({1, 1}, {10, 10});
    video->close();
    EXPECT_EQ(video->waitForRoom(0), iWaitable::eWaitFailed);
    EXPECT_EQ(video->getStatistics().dropped, 1u);
}

TEST_F(VideoWindowTest, LeavesItsWidgetToTheNextWindow)
{
    open();
    show(*video, kRed, kGreen);
    ASSERT_TRUE(shows(kRed, kGreen));
    video->close();
    video->close();
    EXPECT_EQ(QtGLWidgetPool::instance().size(), 1u);
    const int widgets = QtGLWidget::getLiveCount();
    open({50, 60}, {200, 100});
    EXPECT_EQ(QtGLWidget::getLiveCount(), widgets) << "it is used again";
    show(*video, kBlue, kRed);
    EXPECT_TRUE(shows(kBlue, kRed));
}

TEST_F(VideoWindowTest, MayBeReleasedOnAnotherThread)
{
    open();
    show(*video, kRed, kGreen);
    std::thread([window = std::move(video)]() mutable { window.reset(); }).join();
    EXPECT_TRUE(waitFor([&] { return !widget(); }));
}

// A player's thread draws as fast as it can while the window is shown, moved and closed.
TEST_F(VideoWindowTest, GoesAtAnyMomentWhileFramesAreInFlight)
{
    for (int turn = 0; turn < 12; ++turn) {
        video = managers.back()->createVideoWindow({20, 30}, {80 + turn, 60});
        ASSERT_TRUE(video);
        if (turn % 2)
            video->setFrameRate(1000, 1);
        std::atomic<bool> playing{true};
        BackgroundThread player([&, window = video]() mutable {
            while (playing) {
                show(*window, kRed, kGreen);
                if (window->waitForRoom(kHalfAMinute) == iWaitable::eWaitFailed)
                    break;
            }
            window.reset();
        });
        waitFor([&] { return video->getStatistics().presented >= 3; });
        video->hide();
        video->setGeometry({5, 5}, {50, 90});
        video->show();
        pump();
        if (turn % 3 == 0)
            video->close();
        if (turn % 3 == 1)
            playing = false;
        video.reset();
        playing = false;
        player.join();
        pump();
    }
}

TEST_F(VideoWindowTest, LeavesInputToTheRootWindow)
{
    open();
    EXPECT_TRUE(waitFor([&] {
        return QApplication::widgetAt(widget()->mapToGlobal(QPoint(50, 50))) == widgetOf(root);
    }));
}

TEST_F(VideoWindowTest, FillsTheMonitor)
{
    video = managers.back()->createVideoWindowFullscreen();
    ASSERT_TRUE(video);
    EXPECT_TRUE(video->isFullscreen());
    const QRect monitor = QGuiApplication::primaryScreen()->geometry();
    ASSERT_TRUE(waitFor([&] {
        return exposed() && video->getSize() == XY<int>(monitor.width(), monitor.height());
    }));
    const auto filled = [] { return showsFrame(grabScreen(), kRed, kGreen); };
    show(*video, kRed, kGreen);
    EXPECT_TRUE(waitFor(filled));
    EXPECT_EQ(video->getPosition(), (XY<int>(0, 0)));

    EXPECT_FALSE(video->setRootWindow(root));
    video->setGeometry({5, 5}, {50, 50});
    EXPECT_EQ(video->getSize(), (XY<int>(monitor.width(), monitor.height())));
    EXPECT_TRUE(video->setMonitor({monitor.width() - 1, monitor.height() - 1}));
    EXPECT_FALSE(video->setMonitor({-1, 0}));
    EXPECT_FALSE(video->setMonitor({monitor.width(), 0}));
    video->hide();
    EXPECT_TRUE(waitFor([&] { return pixelAt(*widgetOf(root), 10, 10) == 0x808080; }));
    video->show();
    EXPECT_TRUE(waitFor(filled));
}

TEST_F(VideoWindowTest, HandsTheInputOfAFullScreenToTheRootWindow)
{
    video = managers.back()->createVideoWindowFullscreen();
    ASSERT_TRUE(waitFor([&] { return exposed(); }));
    events->clear();
    const QPoint global = widgetOf(root)->mapToGlobal(QPoint(70, 40));
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(widget()->mapFromGlobal(global)), global,
                      Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(widget(), &press);
    ASSERT_EQ(events->lines("mouse").size(), 1u);
    EXPECT_NE(events->lines("mouse")[0].find("70"), std::string::npos) << events->lines("mouse")[0];
    QKeyEvent key(QEvent::KeyPress, Qt::Key_A, Qt::NoModifier, "a");
    QCoreApplication::sendEvent(widget(), &key);
    EXPECT_EQ(events->lines("key").size(), 1u);
}

TEST(VideoWindow, GoesWithTheWindowManagersShutdown)
{
    if (runsInFreshProcess())
        return;
    const FaultTrap trap;
    QtWindowManager manager;
    const auto root = manager.createRootWindow();
    iRootWindow::InitArgs args;
    args.size = {300, 200};
    args.eventHandler = new GreyHandler(root);
    root->realize(args);
    const auto video = manager.createVideoWindow({10, 10}, {100, 100});
    const auto pooled = manager.createVideoWindow({120, 10}, {100, 100});
    ASSERT_TRUE(video && pooled);
    EXPECT_EQ(QtGLWidget::getLiveCount(), 2);
    video->setFrameRate(60, 1);
    const auto kept = video->getBackBuffer();
    BackgroundThread player([&] {
        do {
            fill(*video->getBackBuffer()->getPrimitivesRenderer(true), {0, 0, 100, 100}, kRed);
        } while (video->waitForRoom(kHalfAMinute) != iWaitable::eWaitFailed);
    });
    EXPECT_TRUE(waitFor([&] { return video->getStatistics().presented >= 3; }));
    pooled->close();
    manager.shutdown();
    player.join();
    EXPECT_TRUE(video->isClosed());
    EXPECT_EQ(QtGLWidget::getLiveCount(), 0);
    fill(*kept->getPrimitivesRenderer(true), {0, 0, 100, 100}, kRed);
    EXPECT_FALSE(manager.createVideoWindow({10, 10}, {100, 100}));
    EXPECT_FALSE(manager.createVideoWindowFullscreen());
    manager.shutdown();
    EXPECT_EQ(trap.faults(), "");
}

TEST(VideoSurface, FindsTheFirstMonitorThatHoldsAPosition)
{
    const std::vector<Tq::Rectangle<int>> monitors = {
        {0, 0, 1920, 1080}, {1920, -200, 3200, 824}, {0, 0, 1920, 1080}};
    EXPECT_EQ(VideoSurface::findMonitor(monitors, {0, 0}), 0);
    EXPECT_EQ(VideoSurface::findMonitor(monitors, {1919, 1079}), 0);
    EXPECT_EQ(VideoSurface::findMonitor(monitors, {1920, -1}), 1);
    EXPECT_EQ(VideoSurface::findMonitor(monitors, {1920, 900}), -1);
    EXPECT_EQ(VideoSurface::findMonitor({}, {0, 0}), -1);
}

} // namespace
