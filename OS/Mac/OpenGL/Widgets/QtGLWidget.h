#pragma once

#include "OS/Mac/OpenGL/Contexts/QtPointers.h"
#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"

#include <OS/Core/iObject.h>

#include <QGLWidget>

#include <atomic>
#include <optional>

/// The GL widget that video is drawn into.
///
/// Made, shown, resized and destroyed on the thread of the event loop; drawn on by the updater
/// only, which its context is moved to at the first paint or resize ("bound"). From then on nothing
/// on the thread of the event loop may make the context current: paint events draw nothing. Lost
/// contents (a new size, an exposure) are replaced by drawing the last batch again, on black.
///
/// Destroying it drops what waits in the updater's queue, for every widget, and waits for the task
/// in progress; other widgets' resizes are queued anew. So never with the GL lock held.
class QtGLWidget final : public QGLWidget, public virtual iObject, public GLRenderTarget
{
public:
    /// @param parent null makes a window; a child is transparent to input and takes no focus
    /// @param shareWidget whose objects it shares, or null
    QtGLWidget(QWidget* parent, QGLWidget* shareWidget);
    ~QtGLWidget() override;
    QtGLWidget(const QtGLWidget&) = delete;
    QtGLWidget& operator=(const QtGLWidget&) = delete;

    /// Double buffer, RGBA, direct rendering; no depth and no stencil buffer.
    static QGLFormat getGLFormat();
    /// How many there are: what tests for leaks ask. From any thread.
    static int getLiveCount();

    // -- The bracket around all drawing, on the updater
    /// @return false while the widget is not bound, with the GL lock taken all the same
    bool beginRender() override;
    /// A widget that hasBeenExposed() saw and that is hidden now is shown again, deliberately: a
    /// paint event is posted that does it.
    /// Swaps, unless the window was never exposed.
    /// @return whether the window is exposed
    bool endRender() override;
    void noteDrawn(QtGLWidgetPrimitivesBatch& batch) override;
    Tq::Ptr<RenderTargetState> getState() const override { return state_; }

    /// Runs the base class's resize handling, and so resizeGL, and draws the last batch again at
    /// the new size when no other resize waits. On the updater.
    void resize(QResizeEvent& event);
    using QGLWidget::resize;
    /// Draws the last batch again, if any. On the updater.
    void redraw();

    // -- On the thread of the event loop
    /// Whether the native window is exposed, or was so at an earlier call: sticky, deliberately.
    bool hasBeenExposed();
    bool isBound() const { return bound_.load(std::memory_order_acquire); }
    /// Reads size and ratio anew, for the other threads. The widget's own events do so too.
    void noteMeasures();
    /// Has paint events show the widget no more while it is hidden on purpose: one that the window
    /// system sent before it was hidden may come after.
    void keepHidden(bool keep) { keptHidden_ = keep; }
    /// Forgets the last batch: it is not drawn again. Takes the GL lock: waits for a drawing in
    /// progress.
    void forgetPicture();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void initializeGL() override;
    void resizeGL(int width, int height) override;
    void paintGL() override {}
    void glDraw() override {}

private:
    void bind();
    void uncover(const QRect& place);
    void takeSize();
    bool swapTaken();
    void queueResize(const QResizeEvent& event);
    void queueRedraw();
    void queueLostTasks();
    void noteExposure();
    void noteSurface(bool exists);

    const Tq::Ptr<RenderTargetState> state_;
    std::atomic<bool> bound_{false};
    bool keptHidden_ = false;
    bool exposed_ = false;                 // sticky
    std::atomic<bool> exposedOnce_{false}; // exposed_, for the updater
    std::atomic<bool> exposedNow_{false};
    std::atomic<bool> exposedEver_{false};
    std::atomic<bool> shown_{false};
    std::atomic<int> resizesDue_{0};
    std::atomic<bool> redrawDue_{false};
    bool hasSurface_ = true;                       // a native window; under the GL lock
    Tq::Ptr<QtGLWidgetPrimitivesBatch> lastDrawn_; // under the GL lock
    std::optional<XY<int>> backBufferSize_;        // the updater's: taken since the last swap
};
