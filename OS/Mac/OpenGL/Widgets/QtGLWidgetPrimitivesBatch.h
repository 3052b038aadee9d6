#pragma once

#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"

#include <OS/Primitives/GraphicPrimitivesList.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Threads/iExecutable.h>

#include <atomic>

/// A recording that is drawn on a GL widget when it is executed, by the GL renderer.
///
/// Filled by one thread, then executed on the updater; it may be executed again. A widget that has
/// gone meanwhile is not drawn on.
class QtGLWidgetPrimitivesBatch final : public iExecutable,
                                        public GraphicPrimitivesList::iPrimitivesProcessor,
                                        public GraphicPrimitivesList
{
public:
    /// Makes what a batch draws with, for the context that is current.
    using RendererFactory = Tq::Ptr<iGraphicPrimitivesRenderer> (*)(const XY<int>& logicalSize,
                                                                    double ratio);

    /// @param target not owned; null makes a batch that does nothing
    explicit QtGLWidgetPrimitivesBatch(GLRenderTarget* target);
    /// For a target that may have gone by now. @param state the target's
    QtGLWidgetPrimitivesBatch(GLRenderTarget* target, Tq::Ptr<RenderTargetState> state);

    /// draw(), for the queue.
    void execute() override;
    /// Draws the list into the target. Nothing happens without a target or with an empty list.
    /// @return whether it was drawn and can be seen
    bool draw();
    /// Draws the list on a black ground: what was in the target is lost.
    void drawAgain();

    /// What was recorded is handed over: the renderers that fill it draw nothing more.
    void seal() { sealed_.store(true, std::memory_order_release); }
    bool isSealed() const { return sealed_.load(std::memory_order_acquire); }

    void process(const RectDescription* d, unsigned int n, const Clip& c) override;
    void process(const EllipseDescription* d, unsigned int n, const Clip& c) override;
    void process(const LineDescription* d, unsigned int n, const Clip& c) override;
    void process(const TextDescription* d, unsigned int n, const Clip& c) override;
    void process(const AlphaRectDescription* d, unsigned int n, const Clip& c) override;
    void process(const BezierCurveDescription* d, unsigned int n, const Clip& c) override;
    void process(const ImageDescription* d, unsigned int n, const Clip& c) override;
    void process(const ImageDescriptionEx* d, unsigned int n, const Clip& c) override;

    /// Has batches draw with something else; null sets the GL renderer again. For tests, while
    /// nothing is drawn.
    static void setRendererFactory(RendererFactory factory);

private:
    bool draw(bool onBlack);
    void replay();
    template <class T>
    void render(const T* descs, unsigned int count, const Clip& clip);

    GLRenderTarget* target_;
    Tq::Ptr<RenderTargetState> state_;
    std::atomic<bool> sealed_{false};
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer_; // null outside draw
};
