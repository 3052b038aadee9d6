#include "Windowing/WindowRig.h"

#include "OS/Mac/Windowing/QtEventRedirector.h"

#include "support/Stopwatch.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <QDrag>
#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QMouseEvent>
#include <QScreen>
#include <QUrl>
#include <QWheelEvent>
#include <QWidget>
#include <algorithm>
#include <functional>

namespace {

using Lines = std::vector<std::string>;

enum eButtonNumber : unsigned int
{
    kLeft = 1,
    kMiddle = 2,
    kRight = 3,
    kWheelUp = 4,
    kWheelDown = 5,
    kWheelLeft = 6,
    kWheelRight = 7,
    kBack = 8
};

class MouseEvents : public WindowTest
{
protected:
    void openUnderMouse()
    {
        open();
        pointAt(30, 30); // the toolkit drops a move to where it believes the pointer to be
        ASSERT_FALSE(waitForLines("mouse 6", 1).empty());
        pointAt(50, 60);
        ASSERT_FALSE(waitForLines("mouse 6 50", 1).empty());
        settle();
        events->clear();
    }
};

// A window that files can be dragged from.
class Source final : public QWidget
{
public:
    explicit Source(QList<QUrl> urls) : urls_(std::move(urls)) { setGeometry(700, 150, 200, 100); }

    /// Called when the drag is about to begin.
    std::function<void()> beforeDrag;

protected:
    void mousePressEvent(QMouseEvent*) override
    {
        auto* drag = new QDrag(this);
        auto* files = new QMimeData;
        files->setUrls(urls_);
        drag->setMimeData(files);
        if (beforeDrag)
            beforeDrag();
        drag->exec(Qt::CopyAction | Qt::MoveAction);
    }

private:
    QList<QUrl> urls_;
};

} // namespace

TEST_F(MouseEvents, ButtonsComeWithTheirKindAndEveryButtonThatIsHeld)
{
    openUnderMouse();
    const struct
    {
        unsigned int button;
        Lines expected;
    } table[] = {
        {kLeft, {"mouse 2 50 60 0x2 0 0x0", "mouse 1 50 60 0x0 0 0x0"}},
        {kRight, {"mouse 4 50 60 0x1 0 0x0", "mouse 3 50 60 0x0 0 0x0"}},
        {kMiddle, {"mouse 4 50 60 0x4 0 0x0", "mouse 3 50 60 0x0 0 0x0"}},
        {kBack, {"mouse 4 50 60 0x0 0 0x0", "mouse 3 50 60 0x0 0 0x0"}},
    };
    for (const auto& one : table) {
        input.click(one.button);
        EXPECT_EQ(waitForLines("mouse", 2), one.expected);
        events->clear();
    }
    input.pressButton(kLeft);
    input.pressButton(kRight);
    input.releaseButton(kLeft);
    input.releaseButton(kRight);
    EXPECT_EQ(waitForLines("mouse", 4),
              (Lines{"mouse 2 50 60 0x2 0 0x0", "mouse 4 50 60 0x3 0 0x0",
                     "mouse 1 50 60 0x1 0 0x0", "mouse 3 50 60 0x0 0 0x0"}));
}

TEST_F(MouseEvents, TheSecondClickOfADoubleClickIsAPress)
{
    openUnderMouse();
    input.click(kLeft);
    waitForLines("mouse", 2); // the window manager holds each press until it has looked at it
    input.click(kLeft);
    EXPECT_EQ(waitForLines("mouse", 4),
              (Lines{"mouse 2 50 60 0x2 0 0x0", "mouse 1 50 60 0x0 0 0x0",
                     "mouse 2 50 60 0x2 0 0x0", "mouse 1 50 60 0x0 0 0x0"}));
}

TEST_F(MouseEvents, ModifiersComeWithTheButton)
{
    openUnderMouse();
    input.press(kShiftL);
    input.click(kLeft);
    EXPECT_EQ(waitForLines("mouse", 1).front(), "mouse 2 50 60 0x2 0 0x1000000");
}

TEST_F(MouseEvents, OnlyVerticalTurnsOfTheWheelArePassedOn)
{
    openUnderMouse();
    for (const unsigned int turn : {kWheelLeft, kWheelUp, kWheelRight, kWheelDown})
        input.click(turn);
    EXPECT_EQ(waitForLines("mouse", 2),
              (Lines{"mouse 5 50 60 0x0 1 0x0", "mouse 5 50 60 0x0 -1 0x0"}));
    settle();
    EXPECT_EQ(events->lines("mouse").size(), 2u);
}

TEST_F(MouseEvents, AWheelThatDoesNotTurnIsSwallowed)
{
    const Tq::Ptr<EventRecorder> recorder(new EventRecorder);
    for (const QPoint delta : {QPoint(0, 0), QPoint(120, 0), QPoint(-120, 60), QPoint(0, 15)}) {
        QWheelEvent turn(QPointF(3.9, -4.9), QPointF(), {}, delta, Qt::RightButton, Qt::AltModifier,
                         Qt::NoScrollPhase, false);
        QtEventRedirector::redirect(&turn, recorder);
    }
    EXPECT_EQ(recorder->lines(), (Lines{"mouse 5 3 -4 0x1 1 0x4000000"}));
}

TEST_F(MouseEvents, MovesRightAfterAPressAreSwallowed)
{
    openUnderMouse();
    input.pressButton(kLeft);
    waitForLines("mouse 2", 1);
    const Stopwatch sincePress;
    int x = 50;
    do { // the pointer goes on moving until a move arrives
        pointAt(++x, 60);
        settle();
    } while (events->lines("mouse 6").empty() && sincePress.elapsedMs() < 10'000);
    EXPECT_GE(sincePress.elapsedMs(), 80);

    // A drag goes on outside the window.
    input.moveMouse(20, 40);
    ASSERT_TRUE(waitFor([&] { return events->lines("mouse 6").size() >= 2; }));
    input.releaseButton(kLeft);
    const Lines up = waitForLines("mouse 1", 1);
    ASSERT_EQ(up.size(), 1u);
    EXPECT_NE(up.front().find(" -"), std::string::npos) << up.front();
}

TEST_F(MouseEvents, MovesWithoutAButtonArrive)
{
    openUnderMouse();
    pointAt(70, 80);
    EXPECT_EQ(waitForLines("mouse", 1).front(), "mouse 6 70 80 0x0 0 0x0");
}

TEST_F(MouseEvents, TimesAreMillisecondsOfTheLibrarysClock)
{
    struct Timed final : iEventHandler
    {
        eRC handleMouse(const MouseEvent& event) override
        {
            time = event.time;
            return eContinue;
        }
        eRC handleKey(const KeyEvent&) override { return eContinue; }
        eRC handlePaint(const PaintEvent&) override { return eContinue; }
        eRC handleWindowEvent(const WindowEvent&) override { return eContinue; }
        eRC handleTimer(const TimerEvent&) override { return eContinue; }
        eRC handleFileDrop(const LightweightString<wchar_t>&) override { return eContinue; }
        eRC handleUserMessage(const UserMessage&) override { return eContinue; }
        std::int64_t time = 0;
    };
    const Tq::Ptr<Timed> timed(new Timed);
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(1, 1), Qt::LeftButton, Qt::LeftButton, {});
    const double before = OS()->utils()->timeNow();
    QtEventRedirector::redirect(&press, timed);
    EXPECT_GE(double(timed->time), before);
    EXPECT_LE(double(timed->time), OS()->utils()->timeNow());
}

TEST_F(MouseEvents, DroppedFilesArriveOneByOne)
{
    Source source({QUrl::fromLocalFile("/tmp/a b.txt"), QUrl("https://example.org/no.png"),
                   QUrl("file:///tmp/%E4bytes.png"), QUrl("file://localhost/tmp/here.png"),
                   QUrl("file://elsewhere/share/there.png"), QUrl("file:///tmp/%00evil")});
    open();
    source.show();
    ASSERT_TRUE(waitFor([&] { return source.isActiveWindow(); }));
    settle();

    // The drag runs a loop of its own, so timers of the toolkit's move the mouse meanwhile.
    const double scale = ratio();
    const QPoint from = source.mapToGlobal(QPoint(50, 50));
    const QPoint to = widget()->mapToGlobal(QPoint(100, 100));
    int step = 0;
    constexpr int steps = 20;
    const auto place = [&](int at) {
        const QPointF p = (QPointF(from) + QPointF(to - from) * at / steps) * scale;
        input.moveMouse(static_cast<int>(p.x()), static_cast<int>(p.y()));
    };
    place(0);
    struct Mover final : QObject
    {
        std::function<void()> move;
        void timerEvent(QTimerEvent*) override { move(); }
    } mover;
    mover.move = [&] {
        if (step < steps)
            place(++step);
        else if (++step == steps + 20)
            input.releaseButton(kLeft);
    };
    source.beforeDrag = [&] { mover.startTimer(15); };
    input.pressButton(kLeft);
    EXPECT_EQ(waitForLines("drop", 4),
              (Lines{"drop /tmp/a%20b.txt", "drop /tmp/%E4bytes.png", "drop /tmp/here.png",
                     "drop smb://elsewhere/share/there.png"}));
}

TEST_F(MouseEvents, ADragWithoutURLsIsNotAccepted)
{
    QMimeData text;
    text.setText("no file");
    QMimeData files;
    files.setUrls({QUrl::fromLocalFile("/tmp/x")});
    const Tq::Ptr<EventRecorder> recorder(new EventRecorder);
    const struct
    {
        QMimeData* data;
        bool accepted;
    } table[] = {{&text, false}, {&files, true}};
    for (const auto& one : table) {
        QDragEnterEvent enter(QPoint(1, 1), Qt::CopyAction, one.data, Qt::LeftButton, {});
        enter.ignore();
        QtEventRedirector::redirect(&enter, recorder);
        EXPECT_EQ(enter.isAccepted(), one.accepted);
    }
    EXPECT_TRUE(recorder->lines().empty());
}
