#include "Windowing/WindowRig.h"

#include "OS/Mac/Windowing/QtMouseCursor.h"
#include "OS/Mac/Windowing/QuitRequest.h"

#include "support/OutputCapture.h"
#include "support/Stopwatch.h"

#include <OS.h>
#include <OS/Painting/iPixelGuard.h>
#include <OS/Primitives/RectDescription.h>

#include <QApplication>
#include <QCloseEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QUrl>
#include <QWidget>
#include <atomic>
#include <cstdlib>
#include <thread>

namespace {

class WindowManager : public WindowTest
{
};

// A window of the application's own that closes when it is asked to.
class OtherWindow : public QWidget
{
};

void dropOn(QWidget* widget)
{
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/tmp/x"), QUrl::fromLocalFile("/tmp/y")});
    QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(widget, &enter);
    QDropEvent drop(QPointF(1, 1), Qt::CopyAction, &files, Qt::LeftButton, {});
    QCoreApplication::sendEvent(widget, &drop);
}

// A callback of a handler that may quit, and what makes it come.
struct QuittingCase
{
    const char* kind;
    void (*provoke)(iRootWindow& window, InputRig& input);
};

void PrintTo(const QuittingCase& one, std::ostream* out)
{
    *out << one.kind;
}

QWidget* widgetOf(iRootWindow& window)
{
    return static_cast<QWidget*>(window.getID());
}

const QuittingCase kQuitting[] = {
    {"mouse",
     [](iRootWindow&, InputRig& input) {
         input.moveMouse(450, 350);
         input.click(1);
     }},
    {"key", [](iRootWindow&, InputRig& input) { input.tap(kA); }},
    {"paint", [](iRootWindow& window, InputRig&) { widgetOf(window)->update(); }},
    {"timer", [](iRootWindow&, InputRig&) {}},
    {"message", [](iRootWindow& window, InputRig&) { window.postUserMessage(); }},
    {"drop", [](iRootWindow& window, InputRig&) { dropOn(widgetOf(window)); }},
    {"window 1", [](iRootWindow& window, InputRig&) { widgetOf(window)->resize(300, 200); }},
    {"window 4",
     [](iRootWindow&, InputRig&) { EXPECT_EQ(std::system("wmctrl -c 'Test window'"), 0); }},
    {"window 6", [](iRootWindow& window, InputRig&) { widgetOf(window)->hide(); }},
};

class Quitting : public WindowTest, public ::testing::WithParamInterface<QuittingCase>
{
};

} // namespace

TEST_P(Quitting, ClosesEveryWindowAndEndsTheLoopWithZero)
{
    const QuittingCase& one = GetParam();
    open();
    OtherWindow other;
    other.setAttribute(Qt::WA_ShowWithoutActivating);
    other.setGeometry(400, 400, 100, 100);
    other.show();
    other.lower();
    ASSERT_TRUE(waitFor([&] { return other.isVisible() && window->hasFocus(); }));
    int asked = 0;
    handler->answer = [&](const std::string& kind) {
        if (kind != one.kind)
            return iEventHandler::eContinue;
        ++asked;
        return iEventHandler::eQuit;
    };
    const Tq::Ptr<iTimer> timer =
        std::string(one.kind) == "timer" ? window->createTimer(20) : Tq::Ptr<iTimer>();
    one.provoke(*window, input);
    EXPECT_EQ(manager.startEventLoop(), 0);
    EXPECT_GE(asked, 1);
    EXPECT_FALSE(widget()->isVisible());
    EXPECT_FALSE(other.isVisible());
    EXPECT_FALSE(QuitRequest::isMade()) << "the next loop starts afresh";
}

INSTANTIATE_TEST_SUITE_P(Callbacks, Quitting, ::testing::ValuesIn(kQuitting));

TEST_F(WindowManager, AnAnswerGivenWhileTheWindowIsMadeEndsTheLoopThatComes)
{
    for (const char* kind : {"window 1", "window 5", "window 7", "paint"}) {
        SCOPED_TRACE(kind);
        handler->answer = [&](const std::string& came) {
            return came == kind ? iEventHandler::eQuit : iEventHandler::eContinue;
        };
        window = manager.createRootWindow();
        auto args = usualArgs();
        args.eventHandler = events;
        window->realize(args);
        for (int i = 0; i < 20; ++i)
            manager.despatchPendingEvents();
        EXPECT_EQ(manager.startEventLoop(), 0);
        EXPECT_FALSE(widget()->isVisible());
        EXPECT_NE(input.pixel(300, 250), 0xFFFFFFu);
        window.reset();
        manager.shutdown();
    }
}

TEST_F(WindowManager, AHandlerThatQuitsInEveryCallbackQuitsOnce)
{
    handler->answer = [](const std::string&) { return iEventHandler::eQuit; };
    window = manager.createRootWindow();
    auto args = usualArgs();
    args.eventHandler = events;
    window->realize(args);
    EXPECT_EQ(manager.startEventLoop(), 0);
    EXPECT_FALSE(widget()->isVisible());
}

TEST_F(WindowManager, ReportsASecondRootWindowAndReplacesTheFirst)
{
    const auto first = manager.createRootWindow();
    Tq::Ptr<iRootWindow> second;
    EXPECT_EQ(outputOf([&] { second = manager.createRootWindow(); }),
              "assertion failed rootWindow_ == NULL at OS/Mac/QtWindowManager line 40\n");
    ASSERT_TRUE(second);
    EXPECT_FALSE(first == second);
}

TEST_F(WindowManager, AnswersForItself)
{
    EXPECT_EQ(manager.getCaps(), 7u);
    EXPECT_EQ(manager.getDefaultFont(), L"Tahoma");
    EXPECT_FALSE(manager.createVideoWindow(XY<int>(), XY<int>(10, 10))) << "no root window";
    std::set<LightweightString<wchar_t>> names;
    manager.getAvailableFonts(names);
    EXPECT_FALSE(names.empty());
    EXPECT_NE(OS()->windowMgr(), nullptr);
}

TEST_F(WindowManager, TimersTickUntilTheyAreReleased)
{
    window = manager.createRootWindow();
    int ticks = 0;
    Tq::Ptr<iTimer> timer;
    handler->answer = [&](const std::string&) {
        if (++ticks == 3)
            timer.reset(); // inside its own tick
        return iEventHandler::eContinue;
    };
    const Stopwatch since;
    timer = manager.createTimer(20, events);
    EXPECT_EQ(timer->getIntervalMs(), 20u);
    const std::string line = "timer " + std::to_string(timer->getID());
    ASSERT_TRUE(waitFor([&] { return ticks == 3; }));
    EXPECT_GE(since.elapsedMs(), 3 * 20 * 0.9);
    settle();
    settle();
    EXPECT_EQ(ticks, 3);
    EXPECT_EQ(events->lines(), (std::vector<std::string>{line, line, line}));
}

TEST_F(WindowManager, ATimerWithoutAHandlerOrWithAHugeIntervalDoesNothing)
{
    const auto nobody = manager.createTimer(1, nullptr);
    const auto never = manager.createTimer(0xFFFFFFFF, events);
    settle();
    EXPECT_EQ(never->getIntervalMs(), 0xFFFFFFFFu);
    EXPECT_TRUE(events->lines().empty());
}

TEST_F(WindowManager, PendingEventsAreHandledButNotTheUsersInput)
{
    open();
    input.tap(kA);
    window->postUserMessage();
    const Stopwatch waited;
    while (events->lines("message").empty() && waited.elapsedMs() < 10'000)
        manager.despatchPendingEvents();
    for (int i = 0; i < 50; ++i)
        manager.despatchPendingEvents();
    EXPECT_TRUE(events->lines("key").empty());
    EXPECT_EQ(waitForLines("key", 2).size(), 2u) << "the key waits for the loop";
}

TEST_F(WindowManager, ModifiersMayBeAskedForOnAnyThread)
{
    open();
    std::atomic<bool> seen{false};
    std::atomic<bool> stop{false};
    std::thread asker([&] {
        while (!stop && !seen)
            seen = manager.isKeyPressed(Key::eShift);
    });
    input.press(kShiftL);
    EXPECT_TRUE(waitFor([&] { return seen.load(); }));
    stop = true;
    asker.join();
}

TEST_F(WindowManager, TheMousePositionIsInLogicalPixelsOfTheDesktop)
{
    open();
    pointAt(40, 50);
    EXPECT_TRUE(waitFor([&] {
        const XY<int> at = manager.getMousePosition();
        return std::abs(at.x - 240) <= 1 && std::abs(at.y - 200) <= 1;
    }));
}

TEST_F(WindowManager, ShutdownMayComeTwiceAndWithNothingMade)
{
    open();
    manager.shutdown();
    manager.shutdown();
    EXPECT_TRUE(widget()->isVisible()) << "whoever holds the window keeps it";
    QtWindowManager unused;
    unused.shutdown();
}

TEST_F(WindowManager, AWindowReleasedOnAnotherThreadIsDestroyedOnItsOwn)
{
    open();
    const QPointer<QWidget> gone(widget());
    manager.shutdown();
    std::thread other([&] { window.reset(); });
    other.join();
    EXPECT_TRUE(waitFor([&] { return gone.isNull(); }));
}

TEST_F(WindowManager, StockCursorsFollowTheTable)
{
    manager.createRootWindow();
    const Qt::CursorShape expected[] = {
        Qt::SizeAllCursor,   Qt::SizeHorCursor,   Qt::SizeHorCursor,   Qt::SizeHorCursor,
        Qt::SizeVerCursor,   Qt::SizeVerCursor,   Qt::SizeVerCursor,   Qt::SizeBDiagCursor,
        Qt::SizeBDiagCursor, Qt::SizeBDiagCursor, Qt::SizeFDiagCursor, Qt::SizeFDiagCursor,
        Qt::SizeFDiagCursor, Qt::WaitCursor,      Qt::ForbiddenCursor, Qt::IBeamCursor,
        Qt::ArrowCursor,     Qt::ArrowCursor};
    for (unsigned int stock = 0; stock < std::size(expected); ++stock) {
        const auto cursor =
            manager.createMouseCursor(static_cast<iMouseCursor::eStockCursor>(stock))
                .dynamicCast<QtMouseCursor>();
        EXPECT_EQ(cursor->getCursor().shape(), expected[stock]) << stock;
    }
}

TEST_F(WindowManager, TheCursorIsSetHiddenAndShownAgain)
{
    manager.setMouseCursor(manager.createMouseCursor(iMouseCursor::eIBeam));
    open();
    EXPECT_EQ(widget()->cursor().shape(), Qt::IBeamCursor) << "set before there was a window";
    manager.showMouseCursor(false);
    EXPECT_EQ(widget()->cursor().shape(), Qt::BlankCursor);
    manager.setMouseCursor(manager.createMouseCursor(iMouseCursor::eWait));
    EXPECT_EQ(widget()->cursor().shape(), Qt::BlankCursor);
    manager.showMouseCursor(true);
    EXPECT_EQ(widget()->cursor().shape(), Qt::WaitCursor);
    manager.setMouseCursor(nullptr);
    EXPECT_EQ(widget()->cursor().shape(), Qt::ArrowCursor);
}

TEST_F(WindowManager, ACursorIsMadeOfAnImage)
{
    open();
    const Tq::Ptr<iHostImage> image = window->createCompatibleImage(XY<int>(16, 12));
    RectDescription red;
    red.rect_ = {0, 0, 16, 12};
    red.topColour_ = red.bottomColour_ = NormalisedRGB(1, 0, 0);
    image->getPrimitivesRenderer(false)->render(red);

    const auto cursor =
        manager.createMouseCursor(image, XY<int>(3, 4)).dynamicCast<QtMouseCursor>();
    ASSERT_TRUE(cursor);
    EXPECT_EQ(cursor->getCursor().hotSpot(), QPoint(3, 4));
    EXPECT_EQ(cursor->getCursor().pixmap().toImage().pixel(8, 6), 0xFFFF0000u);
    const auto outside =
        manager.createMouseCursor(image, XY<int>(99, -4)).dynamicCast<QtMouseCursor>();
    EXPECT_EQ(outside->getCursor().hotSpot(), QPoint(15, 0));
    EXPECT_FALSE(manager.createMouseCursor(nullptr, XY<int>()));
    EXPECT_FALSE(
        manager.createMouseCursor(window->createCompatibleImage(XY<int>(0, 0)), XY<int>()));
    manager.setMouseCursor(cursor);
    settle();
}
