#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWidget.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLSharedContext.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Widgets/DeferredResizeEvent.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPrimitivesBatch.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <OS/Threads/CriticalSectionLock.h>

#include <QCoreApplication>
#include <QPaintEvent>
#include <QPlatformSurfaceEvent>
#include <QResizeEvent>
#include <QWindow>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// Those of the thread of the event loop.
std::vector<QtGLWidget*>& liveWidgets()
{
    static auto* const widgets = new std::vector<QtGLWidget*>;
    return *widgets;
}

std::atomic<int> liveCount{0};

// The toolkit makes a GL widget's native window on the desktop and only then moves it into its
// parent. The window manager meanwhile gets the window's first size to carry out, and may do so at
// any time after, over the size that the widget has by then.
class ContextInParent final : public QGLContext
{
public:
    using QGLContext::QGLContext;

protected:
    bool chooseContext(const QGLContext* shared) override
    {
        const auto* widget = static_cast<QWidget*>(device());
        QWidget* parent = widget->parentWidget();
        if (parent && parent->winId() && widget->windowHandle())
            widget->windowHandle()->setParent(parent->windowHandle());
        return QGLContext::chooseContext(shared);
    }
};

class DeferredRedraw final : public iExecutable
{
public:
    explicit DeferredRedraw(QtGLWidget& widget) : widget_(&widget), state_(widget.getState()) {}
    void execute() override
    {
        if (state_->isAlive())
            widget_->redraw();
    }

private:
    QtGLWidget* widget_;
    Tq::Ptr<RenderTargetState> state_;
};

} // namespace

QtGLWidget::QtGLWidget(QWidget* parent, QGLWidget* shareWidget)
    : QGLWidget(new ContextInParent(getGLFormat()), parent, shareWidget,
                parent ? Qt::WindowFlags() : Qt::Window),
      state_(new RenderTargetState)
{
    setAutoBufferSwap(false);
    setAutoFillBackground(false);
    if (parent) {
        setFocusPolicy(Qt::NoFocus);
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setWindowFlags(windowFlags() | Qt::WindowTransparentForInput);
        setAttribute(Qt::WA_MouseTracking);
    }
    if (QWindow* window = windowHandle()) {
        // The window exists since before the flag was set, and would stay a target of input.
        if (parent)
            window->setFlags(window->flags() | Qt::WindowTransparentForInput);
        window->installEventFilter(this);
    }
    noteMeasures();
    liveWidgets().push_back(this);
    ++liveCount;
}

QtGLWidget::~QtGLWidget()
{
    state_->end();
    QtGLWindowUpdater::instance().clear();
    lastDrawn_.reset();

    auto& widgets = liveWidgets();
    widgets.erase(std::remove(widgets.begin(), widgets.end(), this), widgets.end());
    for (QtGLWidget* other : widgets)
        other->queueLostTasks();
    --liveCount;
}

QGLFormat QtGLWidget::getGLFormat()
{
    return OpenGLSharedContext::getGLFormat();
}

int QtGLWidget::getLiveCount()
{
    return liveCount.load();
}

// -- Drawing, on the updater

bool QtGLWidget::beginRender()
{
    OpenGLUtils::instance().getLock()->lock();
    if (!isBound() || !hasSurface_)
        return false;
    makeCurrent();
    takeSize();
    return true;
}

// The driver takes the back buffer's size from the native window when the context is made current
// for the first time after a swap, and keeps it until the next.
void QtGLWidget::takeSize()
{
    const XY<int> now = state_->getMeasures().deviceSize();
    if (!backBufferSize_)
        backBufferSize_ = now;
    if (*backBufferSize_ == now || !exposedEver_.load(std::memory_order_acquire))
        return;
    swapBuffers(); // nothing was drawn since the size was taken
    backBufferSize_ = now;
}

// Swapping a window that was never exposed is undefined; one that is hidden shows it when it comes
// back. @return whether the size has changed since it was taken
bool QtGLWidget::swapTaken()
{
    if (!exposedEver_.load(std::memory_order_acquire))
        return false;
    swapBuffers();
    const bool changed = backBufferSize_ != state_->getMeasures().deviceSize();
    backBufferSize_.reset();
    return changed;
}

bool QtGLWidget::endRender()
{
    bool visible = false;
    if (isBound() && hasSurface_) {
        if (swapTaken())
            queueRedraw();
        visible = exposedNow_.load(std::memory_order_acquire);
        doneCurrent();
        if (exposedOnce_.load(std::memory_order_relaxed) && !shown_.load(std::memory_order_acquire))
            QCoreApplication::postEvent(this, new QPaintEvent(QRect()));
    }
    OpenGLUtils::instance().getLock()->unlock();
    return visible;
}

void QtGLWidget::noteDrawn(QtGLWidgetPrimitivesBatch& batch)
{
    lastDrawn_ = &batch;
}

void QtGLWidget::resize(QResizeEvent& event)
{
    {
        const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
        if (hasSurface_) {
            QGLWidget::resizeEvent(&event);
            takeSize();
            doneCurrent(); // the base class leaves it current
        }
    }
    // The new back buffer holds anything.
    if (resizesDue_.fetch_sub(1) == 1)
        redraw();
}

void QtGLWidget::redraw()
{
    redrawDue_.store(false);
    const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
    if (const Tq::Ptr<QtGLWidgetPrimitivesBatch> last = lastDrawn_)
        last->drawAgain();
}

void QtGLWidget::initializeGL()
{
    glEnable(GL_TEXTURE_2D);
    glDisable(GL_COLOR_MATERIAL);
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_STENCIL_TEST);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
}

// Whole ratios divide whole numbers: half pixels are cut off.
void QtGLWidget::resizeGL(int width, int height)
{
    const double ratio = state_->getMeasures().ratio;
    const auto logical = [ratio](int pixels) {
        return ratio == std::floor(ratio) ? std::floor(pixels / ratio) : pixels / ratio;
    };
    glMatrixMode(GL_PROJECTION);
    glLoadIdentity();
    glOrtho(0, logical(width), 0, logical(height), -1, 1);
    glViewport(0, 0, width, height);
}

// -- Events, on the thread of the event loop

void QtGLWidget::bind()
{
    if (!isBound() && QtGLWindowUpdater::instance().bind(context()))
        bound_.store(true, std::memory_order_release);
}

void QtGLWidget::noteMeasures()
{
    state_->setMeasures({{width(), height()}, devicePixelRatioF()});
}

void QtGLWidget::paintEvent(QPaintEvent*)
{
    if (!isBound()) {
        bind();
        return;
    }
    if (!testAttribute(Qt::WA_WState_Visible) && !keptHidden_)
        setVisible(true);
}

void QtGLWidget::resizeEvent(QResizeEvent* event)
{
    bind();
    // Before the updater draws: the driver takes a new back buffer's size from the native window,
    // which the toolkit resizes only after this event. A size that the window system has sent may
    // be an old one: answering it would keep it.
    if (QWindow* window = windowHandle(); window && !event->spontaneous())
        window->resize(event->size());
    noteMeasures();
    uncover(QRect(pos(), event->oldSize()));
    queueResize(*event);
}

void QtGLWidget::moveEvent(QMoveEvent* event)
{
    uncover(QRect(event->oldPos(), size()));
    QGLWidget::moveEvent(event);
}

// The parent's picture has nothing where the widget was: the toolkit spares the drawing there.
void QtGLWidget::uncover(const QRect& place)
{
    if (!isWindow() && parentWidget())
        parentWidget()->update(place);
}

void QtGLWidget::queueResize(const QResizeEvent& event)
{
    ++resizesDue_;
    QtGLWindowUpdater::instance().queue(new DeferredResizeEvent(*this, event));
}

void QtGLWidget::queueRedraw()
{
    if (isBound() && !redrawDue_.exchange(true))
        QtGLWindowUpdater::instance().queue(new DeferredRedraw(*this));
}

// The queue was emptied on behalf of another widget.
void QtGLWidget::queueLostTasks()
{
    if (resizesDue_.exchange(0) > 0)
        queueResize(QResizeEvent(size(), size()));
    if (redrawDue_.exchange(false))
        queueRedraw();
}

bool QtGLWidget::event(QEvent* event)
{
    const bool handled = QGLWidget::event(event);
    if (event->type() == QEvent::ScreenChangeInternal) {
        noteMeasures();
        if (isBound())
            queueResize(QResizeEvent(size(), size()));
    }
    return handled;
}

bool QtGLWidget::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() == QEvent::Expose && watched == windowHandle())
        noteExposure();
    if (event->type() == QEvent::PlatformSurface && watched == windowHandle())
        noteSurface(static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
                    QPlatformSurfaceEvent::SurfaceCreated);
    return QGLWidget::eventFilter(watched, event);
}

// The toolkit destroys the native window on its own thread, also together with a window around it:
// from before that, until there is a new one, nobody may make it current.
void QtGLWidget::noteSurface(bool exists)
{
    const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
    hasSurface_ = exists;
}

void QtGLWidget::noteExposure()
{
    const bool exposed = windowHandle()->isExposed();
    exposedNow_.store(exposed, std::memory_order_release);
    if (!exposed)
        return;
    exposedEver_.store(true, std::memory_order_release);
    queueRedraw();
}

void QtGLWidget::showEvent(QShowEvent* event)
{
    shown_.store(true, std::memory_order_release);
    QGLWidget::showEvent(event);
}

void QtGLWidget::hideEvent(QHideEvent* event)
{
    if (!event->spontaneous()) {
        shown_.store(false, std::memory_order_release);
        exposedNow_.store(false, std::memory_order_release);
        uncover(geometry());
    }
    QGLWidget::hideEvent(event);
}

bool QtGLWidget::hasBeenExposed()
{
    if (!exposed_) {
        exposed_ = windowHandle() && windowHandle()->isExposed();
        exposedOnce_.store(exposed_, std::memory_order_relaxed);
    }
    return exposed_;
}

void QtGLWidget::forgetPicture()
{
    Tq::Ptr<QtGLWidgetPrimitivesBatch> last;
    const CriticalSectionLock lock(OpenGLUtils::instance().getLock());
    last.swap(lastDrawn_);
}
