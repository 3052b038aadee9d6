#include "Windowing/WindowRig.h"

#include "support/Stopwatch.h"

#include "OS/Mac/Application/QtApplication.h"

#include <OS/Primitives/RectDescription.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWidget>
#include <cmath>

namespace {

constexpr double kLimitMs = 10'000;

// Woken first: the toolkit can miss that its reader has brought something between two calls.
void pump()
{
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
        dispatcher->wakeUp();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

} // namespace

bool waitFor(const std::function<bool()>& condition)
{
    const Stopwatch waited;
    while (!condition()) {
        if (waited.elapsedMs() > kLimitMs)
            return false;
        pump();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    return true;
}

void settle()
{
    constexpr double quietMs = 60;
    const Stopwatch waited;
    while (waited.elapsedMs() < quietMs)
        pump();
}

QImage grabScreen()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

WindowTest::WindowTest() : handler(new ScriptedHandler), events(new EventRecorder(handler))
{
    QtApplication::instance(); // tests may make widgets of their own first
    input.setLayout("us");
    input.moveMouse(5, 5);
}

WindowTest::~WindowTest()
{
    window.reset();
    manager.shutdown();
    settle();
}

iRootWindow::InitArgs WindowTest::usualArgs()
{
    iRootWindow::InitArgs args;
    args.size = XY<int>(400, 300);
    args.position = XY<int>(200, 150);
    args.title = L"Test window";
    return args;
}

void WindowTest::open(iRootWindow::InitArgs args)
{
    window = manager.createRootWindow();
    args.eventHandler = events;
    window->realize(args);
    if (args.visible) {
        window->claimFocus();
        ASSERT_TRUE(waitFor([&] { return !events->lines("paint").empty(); }));
        ASSERT_TRUE(waitFor([&] { return window->hasFocus(); }));
    }
    settle();
    events->clear();
}

void WindowTest::fill(const Tq::Rectangle<int>& area, const NormalisedRGB& colour)
{
    RectDescription rect;
    rect.rect_ = area;
    rect.topColour_ = rect.bottomColour_ = colour;
    window->getPrimitivesRenderer(false)->render(rect);
}

QWidget* WindowTest::widget() const
{
    return static_cast<QWidget*>(window->getID());
}

double WindowTest::ratio() const
{
    return QGuiApplication::primaryScreen()->devicePixelRatio();
}

std::uint32_t WindowTest::pixelAt(int x, int y) const
{
    const QPoint place = widget()->mapToGlobal(QPoint(x, y));
    return input.pixel(static_cast<int>(std::lround(place.x() * ratio())),
                       static_cast<int>(std::lround(place.y() * ratio())));
}

bool WindowTest::waitForPixel(int x, int y, std::uint32_t colour)
{
    return waitFor([&] { return pixelAt(x, y) == colour; });
}

void WindowTest::pointAt(int x, int y)
{
    const QPoint place = widget()->mapToGlobal(QPoint(x, y));
    input.moveMouse(static_cast<int>(std::ceil(place.x() * ratio())),
                    static_cast<int>(std::ceil(place.y() * ratio())));
}

std::vector<std::string> WindowTest::waitForLines(const std::string& kind, std::size_t count)
{
    waitFor([&] { return events->lines(kind).size() >= count; });
    return events->lines(kind);
}
