#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OpenGL/WidgetRig.h"
#include "support/BackgroundThread.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <QApplication>
#include <QMouseEvent>
#include <QOpenGLContext>
#include <QPaintEvent>
#include <QResizeEvent>
#include <QThread>
#include <QWindow>
#include <cmath>

namespace {

class QtGLWidgetTest : public GLWidgetTest
{
};

struct Projection
{
    double right = 0, top = 0;
    GLint viewport[4] = {};

    static Projection current()
    {
        Projection result;
        GLdouble m[16];
        glGetDoublev(GL_PROJECTION_MATRIX, m);
        result.right = 2.0 / m[0];
        result.top = 2.0 / m[5];
        EXPECT_DOUBLE_EQ(m[12], -1.0) << "the left edge is 0";
        EXPECT_DOUBLE_EQ(m[13], -1.0) << "the bottom edge is 0";
        glGetIntegerv(GL_VIEWPORT, result.viewport);
        return result;
    }
};

// resizeGL is the toolkit's hook, and protected.
struct OpenWidget : QGLWidget
{
    using QGLWidget::resizeGL;
};

void callResizeGL(QGLWidget& widget, int width, int height)
{
    (widget.*&OpenWidget::resizeGL)(width, height);
}

TEST_F(QtGLWidgetTest, IsMadeAsItsParentAsks)
{
    QtGLWidget child(window.get(), OpenGLUtils::getSharedContext().getWidget());
    EXPECT_EQ(child.focusPolicy(), Qt::NoFocus);
    EXPECT_TRUE(child.testAttribute(Qt::WA_TransparentForMouseEvents));
    EXPECT_TRUE(child.hasMouseTracking());
    EXPECT_TRUE(child.windowFlags() & Qt::WindowTransparentForInput);
    EXPECT_FALSE(child.isWindow());
    EXPECT_FALSE(child.isBound());

    QtGLWidget top(nullptr, OpenGLUtils::getSharedContext().getWidget());
    EXPECT_TRUE(top.isWindow());
    EXPECT_FALSE(top.windowFlags() & Qt::WindowTransparentForInput);
    for (const QtGLWidget* widget : {&child, &top}) {
        EXPECT_TRUE(widget->isSharing());
        EXPECT_TRUE(widget->format().doubleBuffer());
    }
}

TEST_F(QtGLWidgetTest, ProjectsLogicalPixelsFromTheBottomLeft)
{
    const auto widget = makeWidget();
    const double ratio = widget->devicePixelRatioF();
    Projection projection;
    onUpdater([&] {
        ASSERT_TRUE(widget->beginRender());
        callResizeGL(*widget, 801, 601);
        projection = Projection::current();
        widget->endRender();
    });
    // Published for whole ratios: 400 by 300 at 2.
    const bool whole = ratio == std::floor(ratio);
    EXPECT_NEAR(projection.right, whole ? std::floor(801 / ratio) : 801 / ratio, 1e-3);
    EXPECT_NEAR(projection.top, whole ? std::floor(601 / ratio) : 601 / ratio, 1e-3);
    EXPECT_EQ(projection.viewport[2], 801);
    EXPECT_EQ(projection.viewport[3], 601);
}

TEST_F(QtGLWidgetTest, HasNoDepthOrStencilBuffer)
{
    const auto widget = makeWidget();
    GLint depth = -1, stencil = -1;
    onUpdater([&] {
        widget->beginRender();
        glGetIntegerv(GL_DEPTH_BITS, &depth);
        glGetIntegerv(GL_STENCIL_BITS, &stencil);
        widget->endRender();
    });
    EXPECT_EQ(depth, 0);
    EXPECT_EQ(stencil, 0);
}

TEST_F(QtGLWidgetTest, IsBoundByItsFirstPaintOrResize)
{
    QtGLWidget widget(nullptr, OpenGLUtils::getSharedContext().getWidget());
    widget.setAttribute(Qt::WA_DontShowOnScreen);
    bool ready = true;
    onUpdater([&] {
        ready = widget.beginRender();
        EXPECT_FALSE(OpenGLContextProtector::hasContext());
        EXPECT_FALSE(widget.endRender());
    });
    EXPECT_FALSE(ready) << "its context is the event loop's still";

    QPaintEvent paint{QRect()};
    QCoreApplication::sendEvent(&widget, &paint);
    EXPECT_TRUE(widget.isBound());
    EXPECT_FALSE(widget.isVisible()) << "the first paint does only that";
    QThread* owner = nullptr;
    onUpdater([&] {
        ready = widget.beginRender();
        owner = QOpenGLContext::currentContext()->thread();
        EXPECT_EQ(owner, QThread::currentThread());
        widget.endRender();
        EXPECT_FALSE(OpenGLContextProtector::hasContext());
    });
    EXPECT_TRUE(ready);
}

TEST_F(QtGLWidgetTest, HoldsTheGLLockFromBeginToEnd)
{
    const auto widget = makeWidget();
    const auto lock = OpenGLUtils::instance().getLock();
    const auto free = [&] {
        return BackgroundThread([&] {
                   const bool got = lock->lockIfNotLocked();
                   if (got)
                       lock->unlock();
                   return got;
               })
            .result();
    };
    onUpdater([&] {
        widget->beginRender();
        EXPECT_FALSE(free());
        widget->endRender();
        EXPECT_TRUE(free());
    });
}

TEST_F(QtGLWidgetTest, ShowsWhatWasDrawn)
{
    const auto widget = makeWidget();
    drawFrame(*widget, kRed, kGreen);
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
    drawFrame(*widget, kBlue, kRed);
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kBlue, kRed); }));
}

// The first frame after each is looked at, not the second.
TEST_F(QtGLWidgetTest, ShowsTheFirstFrameAfterAnyChangeAtTheNewSize)
{
    struct Change
    {
        const char* name;
        std::function<void(QWidget&, const QSize&)> make;
    };
    const Change changes[] = {
        {"resize", [](QWidget& w, const QSize& s) { w.resize(s); }},
        {"move and resize",
         [](QWidget& w, const QSize& s) {
             w.setGeometry(s.width() / 9, s.height() / 9, s.width(), s.height());
         }},
        {"hide, resize, show",
         [](QWidget& w, const QSize& s) {
             w.hide();
             w.resize(s);
             w.show();
         }},
    };
    const auto widget = makeWidget();
    int turn = 0;
    for (int round = 0; round < 8; ++round)
        for (const Change& change : changes) {
            ++turn;
            const QSize size(60 + (turn * 37) % 200, 50 + (turn * 53) % 150);
            change.make(*widget, size);
            const QRgb ground = turn % 2 ? kRed : kBlue;
            drawFrame(*widget, ground, kGreen);
            ASSERT_TRUE(waitFor([&] { return showsFrame(*widget, ground, kGreen); }))
                << change.name << " to " << size.width() << " x " << size.height();
        }
}

TEST_F(QtGLWidgetTest, DrawsItsPictureAgainWhenItsContentsAreLost)
{
    const auto widget = makeWidget(QRect(20, 30, 160, 120));
    drawFrame(*widget, kRed, kGreen);
    ASSERT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));

    // Larger: black around what was there, never what memory held.
    widget->resize(240, 200);
    EXPECT_TRUE(waitFor([&] {
        return pixelAt(*widget, 10, 10) == kGreen && pixelAt(*widget, 150, 110) == kRed &&
               pixelAt(*widget, 170, 100) == kBlack && pixelAt(*widget, 239, 199) == kBlack;
    }));
    widget->resize(160, 120);
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
    widget->hide();
    ASSERT_TRUE(waitFor([&] { return pixelAt(*window, 100, 90) != kRed; }));
    widget->show();
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
}

TEST_F(QtGLWidgetTest, IsShownAgainByAFrameOnceItHasBeenExposed)
{
    const auto widget = makeWidget();
    drawFrame(*widget, kRed, kGreen);
    ASSERT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
    widget->hide();
    drawFrame(*widget, kRed, kGreen);
    finishUpdater();
    pump();
    EXPECT_FALSE(widget->isVisible()) << "nobody has asked whether it was exposed";

    widget->show();
    ASSERT_TRUE(waitFor([&] { return widget->hasBeenExposed(); }));
    widget->hide();
    ASSERT_TRUE(widget->hasBeenExposed()) << "sticky";
    drawFrame(*widget, kBlue, kGreen);
    EXPECT_TRUE(waitFor([&] { return widget->isVisible(); }));
    EXPECT_TRUE(waitFor([&] { return showsFrame(*widget, kBlue, kGreen); }));
}

TEST_F(QtGLWidgetTest, LeavesInputToItsParent)
{
    const auto widget = makeWidget();
    EXPECT_TRUE(waitFor([&] {
        return QApplication::widgetAt(widget->mapToGlobal(QPoint(50, 50))) == window.get();
    }));
    EXPECT_TRUE(widget->windowHandle()->flags() & Qt::WindowTransparentForInput);
}

TEST_F(QtGLWidgetTest, GoesOnlyWhenTheUpdaterIsDoneWithIt)
{
    auto widget = makeWidget();
    const auto state = widget->getState();
    Gate drawing, goOn;
    bool aliveAtEnd = false;
    class Slow final : public iExecutable
    {
    public:
        explicit Slow(std::function<void()> code) : code_(std::move(code)) {}
        void execute() override { code_(); }

    private:
        std::function<void()> code_;
    };
    const int before = QtGLWidget::getLiveCount();
    QtGLWindowUpdater::instance().queue(new Slow([&, raw = widget.get()] {
        raw->beginRender();
        drawing.open();
        goOn.wait();
        aliveAtEnd = QtGLWidget::getLiveCount() == before;
        raw->endRender();
    }));
    drawing.wait();
    drawFrame(*widget, kRed, kGreen); // behind it in the queue
    BackgroundThread opener([&] {
        waitUntil([&] { return !state->isAlive(); });
        goOn.open();
    });
    widget.reset();
    EXPECT_TRUE(aliveAtEnd);
    EXPECT_EQ(QtGLWidget::getLiveCount(), before - 1);
    finishUpdater();
}

TEST_F(QtGLWidgetTest, KeepsItsResizeWhenAnotherWidgetGoes)
{
    const auto widget = makeWidget(QRect(20, 30, 160, 120));
    drawFrame(*widget, kRed, kGreen);
    ASSERT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
    for (int turn = 0; turn < 5; ++turn) {
        auto other = makeWidget(QRect(250, 30, 60, 60));
        widget->resize(200, 160 + turn);
        other.reset(); // empties the queue
        ASSERT_TRUE(waitFor([&] {
            return pixelAt(*widget, 150, 110) == kRed && pixelAt(*widget, 190, 150) == kBlack;
        }));
        widget->resize(160, 120);
        ASSERT_TRUE(waitFor([&] { return showsFrame(*widget, kRed, kGreen); }));
    }
}

} // namespace
