#include "OS/Mac/Windowing/QtRootWindowWidget.h"

#include "OS/Mac/Painting/BatchRenderer.h"
#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"
#include "OS/Mac/Primitives/DeferredPrimitivesRenderer.h"
#include "OS/Mac/Windowing/DeferredWindowDestructionEvent.h"
#include "OS/Mac/Windowing/QtCustomEvent.h"
#include "OS/Mac/Windowing/QtEventRedirector.h"
#include "OS/Mac/Windowing/QuitRequest.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWindow>
#include <utility>

namespace {

constexpr std::size_t kMostBatchesUnseen = 4096;

class DepthGuard
{
public:
    explicit DepthGuard(int& depth) : depth_(depth) { ++depth_; }
    ~DepthGuard() { --depth_; }
    DepthGuard(const DepthGuard&) = delete;
    DepthGuard& operator=(const DepthGuard&) = delete;

private:
    int& depth_;
};

} // namespace

QtRootWindowWidget::QtRootWindowWidget()
{
    // What was drawn stays until it is drawn over: batches add to the picture.
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_NoSystemBackground);
    setAttribute(Qt::WA_InputMethodEnabled);
    setFocusPolicy(Qt::StrongFocus);
    setMouseTracking(true);
    setAcceptDrops(true);
}

QtRootWindowWidget::~QtRootWindowWidget() = default;

void QtRootWindowWidget::setEventHandler(Tq::Ptr<iEventHandler> handler)
{
    eventHandler_ = std::move(handler);
}

Tq::Ptr<iGraphicPrimitivesRenderer> QtRootWindowWidget::getPrimitivesRenderer(bool antialias)
{
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer;
    if (paintRenderer_)
        renderer = paintRenderer_;
    else
        renderer = new DeferredPrimitivesRenderer(this);
    renderer->setAntialiasingEnabled(antialias);
    return renderer;
}

void QtRootWindowWidget::render(const PrimitivesBatch& batch)
{
    pendingBatches_.push_back(batch);
    if (pendingBatches_.size() > kMostBatchesUnseen && !canBeSeen()) {
        pendingBatches_.clear();
        paintedSize_ = QSize();
    }
    update();
}

void QtRootWindowWidget::queueSubWindowForDeletion(Tq::Ptr<QWidget> window)
{
    pendingDeletions_.push_back(std::move(window));
}

void QtRootWindowWidget::checkHandlerRc(iEventHandler::eRC rc)
{
    if (rc == iEventHandler::eQuit)
        QuitRequest::make();
}

void QtRootWindowWidget::setFrameless(bool frameless)
{
    Qt::WindowFlags flags = windowFlags();
    flags.setFlag(Qt::FramelessWindowHint, frameless);
    overrideWindowFlags(flags);
    if (windowHandle())
        windowHandle()->setFlags(flags);
}

// -- Events

template <class Event>
void QtRootWindowWidget::redirect(Event* event)
{
    checkHandlerRc(QtEventRedirector::redirect(event, eventHandler_));
}

bool QtRootWindowWidget::event(QEvent* event)
{
    if (event->type() == QEvent::DeferredDelete)
        return QWidget::event(event); // the widget is gone afterwards
    const DepthGuard inEvent(eventDepth_);
    if (event->type() == QtCustomEvent::type()) {
        deliverUserMessage();
        return true;
    }
    if (event->type() == DeferredWindowDestructionEvent::type())
        return true; // what it carries goes with it
    if (event->type() == QEvent::UpdateRequest && inPaint_) {
        paintAgain_ = true;
        return true;
    }
    return QWidget::event(event);
}

void QtRootWindowWidget::deliverUserMessage()
{
    const Tq::Ptr<iEventHandler> handler = eventHandler_;
    if (handler)
        checkHandlerRc(handler->handleUserMessage({}));
}

// Tab is a key like any other.
bool QtRootWindowWidget::focusNextPrevChild(bool)
{
    return false;
}

void QtRootWindowWidget::resizeEvent(QResizeEvent* event)
{
    redirect(event);
}

// A close request never closes the window by itself: only the handler's answer does.
void QtRootWindowWidget::closeEvent(QCloseEvent* event)
{
    if (QuitRequest::isClosingWindows()) {
        event->accept();
        return;
    }
    event->ignore();
    redirect(event);
}

void QtRootWindowWidget::showEvent(QShowEvent* event)
{
    if (event->spontaneous() && (windowFlags() & Qt::FramelessWindowHint)) {
        setFrameless(true);
        showFullScreen();
    }
    redirect(event);
}

void QtRootWindowWidget::hideEvent(QHideEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::focusInEvent(QFocusEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::focusOutEvent(QFocusEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::keyPressEvent(QKeyEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::keyReleaseEvent(QKeyEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::inputMethodEvent(QInputMethodEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::handleMouseEvent(QMouseEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::mousePressEvent(QMouseEvent* event)
{
    handleMouseEvent(event);
}

void QtRootWindowWidget::mouseReleaseEvent(QMouseEvent* event)
{
    handleMouseEvent(event);
}

void QtRootWindowWidget::mouseDoubleClickEvent(QMouseEvent* event)
{
    handleMouseEvent(event);
}

void QtRootWindowWidget::mouseMoveEvent(QMouseEvent* event)
{
    handleMouseEvent(event);
}

void QtRootWindowWidget::wheelEvent(QWheelEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::dragEnterEvent(QDragEnterEvent* event)
{
    redirect(event);
}

void QtRootWindowWidget::dropEvent(QDropEvent* event)
{
    redirect(event);
}

// -- Painting

void QtRootWindowWidget::paintEvent(QPaintEvent* event)
{
    if (inPaint_) { // a loop run by the handler inside its paint
        paintAgain_ = true;
        return;
    }
    inPaint_ = true;
    auto rc = iEventHandler::eContinue;
    if (!pendingBatches_.empty())
        drawPendingBatches();
    else
        rc = paintThroughHandler(event);
    inPaint_ = false;

    releasePendingDeletions();
    if (std::exchange(paintAgain_, false))
        update();
    checkHandlerRc(rc);
}

void QtRootWindowWidget::drawPendingBatches()
{
    const std::vector<PrimitivesBatch> batches = std::exchange(pendingBatches_, {});
    if (replaceLostContents())
        paintAgain_ = true;
    const Tq::Ptr<BatchRenderer> renderer(new BatchRenderer(this));
    paintRenderer_ = renderer;
    for (const PrimitivesBatch& batch : batches) {
        renderer->setAntialiasingEnabled(batch.antialias);
        if (batch.list)
            batch.list->process(*renderer);
    }
    closePaintRenderer();
}

iEventHandler::eRC QtRootWindowWidget::paintThroughHandler(QPaintEvent* event)
{
    replaceLostContents();
    if (!eventHandler_)
        return iEventHandler::eContinue;
    paintRenderer_ = new QtGraphicPrimitivesRenderer(this);
    const auto rc = QtEventRedirector::redirect(event, eventHandler_);
    closePaintRenderer();
    return rc;
}

// The handler may have kept it, and a widget can be drawn on in its paint only.
void QtRootWindowWidget::closePaintRenderer()
{
    paintRenderer_->finish();
    paintRenderer_.reset();
}

// A picture of a new size begins with whatever was in memory. @return whether it did
bool QtRootWindowWidget::replaceLostContents()
{
    const QSize now = size() * devicePixelRatioF();
    if (now == paintedSize_)
        return false;
    QPainter(this).fillRect(rect(), Qt::black);
    paintedSize_ = now;
    return true;
}

void QtRootWindowWidget::releasePendingDeletions()
{
    if (!pendingDeletions_.empty()) {
        QCoreApplication::postEvent(
            this, new DeferredWindowDestructionEvent(std::exchange(pendingDeletions_, {})));
    }
}

bool QtRootWindowWidget::canBeSeen() const
{
    return windowHandle() && windowHandle()->isExposed();
}
