#pragma once

#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPrimitivesBatch.h"

#include <OS/OpenGL/iVideoWindowBackBuffer.h>
#include <OS/Primitives/ImageDescriptionEx.h>

/// Takes the frames of released back buffers, in place of the updater.
class FrameReceiver : public virtual iObject
{
public:
    /// @param frame sealed and not empty. On the thread that released the back buffer; must not
    /// throw
    virtual void receive(Tq::Ptr<QtGLWidgetPrimitivesBatch> frame) = 0;
};

/// The back buffer of one frame: records what is drawn on it, and when it is released has that
/// drawn into its widget on the updater.
///
/// One that no renderer was asked from, or that nothing was drawn on, queues nothing. Used by one
/// thread at a time; an exception from the release ends the process.
class GLBackBufferGuard final : public iVideoWindowBackBuffer
{
public:
    /// @param target not owned; it may go before the back buffer does, whose frame is dropped then
    /// @param size what getSize answers
    /// @param receiver takes the frame; null queues it on the updater
    GLBackBufferGuard(GLRenderTarget* target, const XY<int>& size,
                      Tq::Ptr<FrameReceiver> receiver = nullptr);
    /// For a target that may have gone by now. @param state the target's
    GLBackBufferGuard(GLRenderTarget* target, Tq::Ptr<RenderTargetState> state, const XY<int>& size,
                      Tq::Ptr<FrameReceiver> receiver);
    ~GLBackBufferGuard() override;
    GLBackBufferGuard(const GLBackBufferGuard&) = delete;
    GLBackBufferGuard& operator=(const GLBackBufferGuard&) = delete;

    /// Draws an image after everything else, when there is a batch by then.
    void setFinalImage(const ImageDescriptionEx& image) { finalImage_ = image; }

    XY<int> getSize() const override { return size_; }
    int getBitsPerPixel() const override { return 32; }
    /// One more renderer that feeds the same batch. Drawn on after the back buffer was released it
    /// does nothing. @param antialias ignored, deliberately: GL always smooths
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) override;
    /// Null: a back buffer makes no images.
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const override;
    eFormat getFormat() const override { return eARGB8; }

private:
    Tq::Ptr<QtGLWidgetPrimitivesBatch> batch_; // null until a renderer is asked for
    ImageDescriptionEx finalImage_;            // none without an image
    XY<int> size_;
    GLRenderTarget* target_;
    Tq::Ptr<RenderTargetState> state_;
    Tq::Ptr<FrameReceiver> receiver_;
};
