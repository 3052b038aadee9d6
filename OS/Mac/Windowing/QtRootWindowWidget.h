#pragma once

#include "OS/Mac/Windowing/MouseEventHandler.h"

#include <OS/Core/Ptr.h>
#include <OS/Primitives/PrimitivesBatch.h>
#include <OS/Primitives/iGraphicPrimitivesBatchRenderer.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Windowing/iEventHandler.h>

#include <QWidget>
#include <vector>

class QtGraphicPrimitivesRenderer;

/// The widget of the root window: receives every event of the window system and paints.
///
/// Batches wait in a queue, without a lock, for the next paint, which draws them in order instead
/// of asking the handler: deliberate, queued drawing is that paint. Only where the window's former
/// contents were lost (first paint, new size, too long a queue) does another paint follow that asks
/// it.
///
/// Everything runs on the thread of the event loop.
class QtRootWindowWidget final : public QWidget,
                                 public iGraphicPrimitivesBatchRenderer,
                                 public MouseEventHandler
{
public:
    QtRootWindowWidget();
    ~QtRootWindowWidget() override;

    void setEventHandler(Tq::Ptr<iEventHandler> handler);
    /// The renderer of the paint in progress, or outside a paint a new one that delivers to render.
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias);
    /// Queues a batch and has the window painted. While the window cannot be seen, the queue holds
    /// 4096 batches; the one that is too many empties it, and the handler paints when the window
    /// comes back.
    void render(const PrimitivesBatch& batch) override;
    /// Keeps a sub-window until the next paint is over.
    void queueSubWindowForDeletion(Tq::Ptr<QWidget> window);
    /// eQuit has every window closed and the event loop ended; other values change nothing.
    static void checkHandlerRc(iEventHandler::eRC rc);
    void handleMouseEvent(QMouseEvent* event) override;

    /// Puts the frame away or back without taking the window off the screen: window managers lose
    /// the state of a window that is mapped anew.
    void setFrameless(bool frameless);
    bool isPainting() const { return inPaint_; }
    /// Whether an event of this widget is being handled, and it must not be destroyed.
    bool isInEvent() const { return eventDepth_ > 0; }

protected:
    bool event(QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void resizeEvent(QResizeEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void keyReleaseEvent(QKeyEvent* event) override;
    void inputMethodEvent(QInputMethodEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    template <class Event>
    void redirect(Event* event);
    void deliverUserMessage();
    void drawPendingBatches();
    iEventHandler::eRC paintThroughHandler(QPaintEvent* event);
    void closePaintRenderer();
    bool replaceLostContents();
    void releasePendingDeletions();
    bool canBeSeen() const;

    Tq::Ptr<iEventHandler> eventHandler_;
    std::vector<PrimitivesBatch> pendingBatches_;
    std::vector<Tq::Ptr<QWidget>> pendingDeletions_;
    bool inPaint_ = false;
    bool paintAgain_ = false;
    Tq::Ptr<QtGraphicPrimitivesRenderer> paintRenderer_; ///< null outside the drawing of a paint
    QSize paintedSize_; ///< device pixels that hold a picture; empty when it was lost
    int eventDepth_ = 0;
};
