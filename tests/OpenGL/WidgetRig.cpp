#include "OpenGL/WidgetRig.h"

#include "OpenGL/XErrors.h"
#include "support/BackgroundThread.h"
#include "support/Stopwatch.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <OS/Primitives/RectDescription.h>

#include <QAbstractEventDispatcher>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QPixmap>
#include <QScreen>
#include <QWindow>
#include <cmath>
#include <mutex>

namespace {

std::mutex faultGuard;
std::string faultLines;
QtMessageHandler formerMessages = nullptr;

void noteMessage(QtMsgType type, const QMessageLogContext& context, const QString& text)
{
    if (type == QtWarningMsg || type == QtCriticalMsg)
        FaultTrap::note(text.toStdString());
    formerMessages(type, context, text);
}

class Task final : public iExecutable
{
public:
    Task(std::function<void()> code, Gate& done) : code_(std::move(code)), done_(done) {}
    void execute() override
    {
        code_();
        done_.open();
    }

private:
    std::function<void()> code_;
    Gate& done_;
};

class GreyWindow final : public QWidget
{
public:
    GreyWindow()
    {
        setAutoFillBackground(true);
        setPalette(QPalette(Qt::gray));
    }
};

} // namespace

void pump()
{
    if (QAbstractEventDispatcher* dispatcher = QAbstractEventDispatcher::instance())
        dispatcher->wakeUp();
    QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

bool waitFor(const std::function<bool()>& condition)
{
    constexpr double kLimitMs = 30'000;
    const Stopwatch waited;
    while (!condition()) {
        if (waited.elapsedMs() > kLimitMs)
            return false;
        pump();
    }
    return true;
}

void onUpdater(std::function<void()> code)
{
    Gate done;
    QtGLWindowUpdater::instance().queue(new Task(std::move(code), done));
    done.wait();
}

void finishUpdater()
{
    onUpdater([] {});
}

QImage grabScreen()
{
    return QGuiApplication::primaryScreen()->grabWindow(0).toImage();
}

QImage grabWidget(const QWidget& widget)
{
    const double ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
    const QPoint origin = widget.mapToGlobal(QPoint(0, 0));
    const auto device = [ratio](int logical) {
        return static_cast<int>(std::lround(logical * ratio));
    };
    return grabScreen().copy(device(origin.x()), device(origin.y()), device(widget.width()),
                             device(widget.height()));
}

QRgb pixelAt(const QWidget& widget, int x, int y)
{
    const double ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
    const QPoint place = widget.mapToGlobal(QPoint(x, y));
    return grabScreen().pixel(static_cast<int>((place.x() + 0.5) * ratio),
                              static_cast<int>((place.y() + 0.5) * ratio)) &
           0xffffff;
}

NormalisedRGB colour(QRgb rgb)
{
    return {static_cast<float>(qRed(rgb)) / 255.0f, static_cast<float>(qGreen(rgb)) / 255.0f,
            static_cast<float>(qBlue(rgb)) / 255.0f, 1.0f};
}

void fill(iGraphicPrimitivesRenderer& renderer, const Tq::Rectangle<int>& area, QRgb rgb)
{
    RectDescription rect;
    rect.rect_ = area;
    rect.topColour_ = rect.bottomColour_ = colour(rgb);
    renderer.render(rect);
}

void drawFrame(QtGLWidget& widget, QRgb ground, QRgb quarter)
{
    const Tq::Ptr<GLBackBufferGuard> buffer(
        new GLBackBufferGuard(&widget, {widget.width(), widget.height()}));
    const auto renderer = buffer->getPrimitivesRenderer(true);
    fill(*renderer, {0, 0, widget.width(), widget.height()}, ground);
    fill(*renderer, {0, 0, widget.width() / 2, widget.height() / 2}, quarter);
}

bool showsFrame(const QImage& shown, QRgb ground, QRgb quarter)
{
    // At a fractional scale a widget begins and ends within a device pixel.
    const double ratio = QGuiApplication::primaryScreen()->devicePixelRatio();
    const int edge = ratio == std::floor(ratio) ? 0 : 2;
    const int w = shown.width(), h = shown.height();
    const int right = w - 1 - edge, bottom = h - 1 - edge;
    const auto is = [&](int x, int y, QRgb rgb) { return (shown.pixel(x, y) & 0xffffff) == rgb; };
    return is(edge, edge, quarter) && is(w / 2 - 3, h / 2 - 3, quarter) &&
           is(w / 2 + 3, h / 2 + 3, ground) && is(right, edge, ground) &&
           is(edge, bottom, ground) && is(right, bottom, ground);
}

bool showsFrame(const QWidget& widget, QRgb ground, QRgb quarter)
{
    return showsFrame(grabWidget(widget), ground, quarter);
}

// -- Faults

FaultTrap::FaultTrap()
{
    QtApplication::instance();
    {
        const std::lock_guard lock(faultGuard);
        faultLines.clear();
    }
    formerMessages = qInstallMessageHandler(noteMessage);
    catchXErrors(true);
}

FaultTrap::~FaultTrap()
{
    catchXErrors(false);
    qInstallMessageHandler(formerMessages);
}

std::string FaultTrap::faults()
{
    const std::lock_guard lock(faultGuard);
    return faultLines;
}

void FaultTrap::note(const std::string& fault)
{
    const std::lock_guard lock(faultGuard);
    if (faultLines.size() < 2000)
        faultLines += fault + "\n";
}

// -- The window

GLWidgetTest::GLWidgetTest()
{
    OpenGLUtils::instance();
    window = std::make_unique<GreyWindow>();
    window->setGeometry(200, 150, 400, 300);
    window->show();
    EXPECT_TRUE(waitFor([&] { return window->windowHandle()->isExposed(); }));
    // A window manager moves it into a frame.
    EXPECT_TRUE(
        waitFor([&] { return pixelAt(*window, 200, 150) == (QColor(Qt::gray).rgb() & 0xffffff); }));
}

GLWidgetTest::~GLWidgetTest()
{
    window.reset();
    pump();
    EXPECT_EQ(trap.faults(), "");
}

Tq::Ptr<QtGLWidget> GLWidgetTest::makeWidget(const QRect& place)
{
    Tq::Ptr<QtGLWidget> widget(
        new QtGLWidget(window.get(), OpenGLUtils::getSharedContext().getWidget()));
    widget->setGeometry(place);
    widget->show();
    EXPECT_TRUE(waitFor([&] { return widget->windowHandle()->isExposed(); }));
    return widget;
}
