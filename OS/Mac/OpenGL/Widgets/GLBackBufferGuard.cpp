#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <utility>

namespace {

/// Records into a batch until that is handed over.
class BackBufferRenderer final : public iGraphicPrimitivesRenderer
{
public:
    explicit BackBufferRenderer(Tq::Ptr<QtGLWidgetPrimitivesBatch> batch) : batch_(std::move(batch))
    {
    }

    void setClipRegion(Tq::Ptr<iRegion> region) override { clipRegion_ = std::move(region); }
    void setAntialiasingEnabled(bool) override {}
    void renderMulti(const RectDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const EllipseDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const LineDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const TextDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const AlphaRectDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const BezierCurveDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const ImageDescription* d, unsigned int n) override { record(d, n); }
    void renderMulti(const ImageDescriptionEx* d, unsigned int n) override { record(d, n); }

private:
    template <class T>
    void record(const T* descs, unsigned int count)
    {
        if (!batch_->isSealed())
            batch_->push_back(descs, count, clipRegion_);
    }

    Tq::Ptr<QtGLWidgetPrimitivesBatch> batch_;
    Tq::Ptr<iRegion> clipRegion_;
};

} // namespace

GLBackBufferGuard::GLBackBufferGuard(GLRenderTarget* target, const XY<int>& size,
                                     Tq::Ptr<FrameReceiver> receiver)
    : GLBackBufferGuard(target, target ? target->getState() : nullptr, size, std::move(receiver))
{
}

GLBackBufferGuard::GLBackBufferGuard(GLRenderTarget* target, Tq::Ptr<RenderTargetState> state,
                                     const XY<int>& size, Tq::Ptr<FrameReceiver> receiver)
    : size_(size), target_(target), state_(std::move(state)), receiver_(std::move(receiver))
{
}

GLBackBufferGuard::~GLBackBufferGuard()
{
    if (!batch_)
        return;
    if (finalImage_.image_)
        batch_->push_back(&finalImage_, 1, nullptr);
    batch_->seal();
    if (batch_->empty())
        return;
    if (receiver_)
        receiver_->receive(std::move(batch_));
    else
        QtGLWindowUpdater::instance().queue(batch_);
}

Tq::Ptr<iGraphicPrimitivesRenderer> GLBackBufferGuard::getPrimitivesRenderer(bool antialias)
{
    if (!batch_)
        batch_ = new QtGLWidgetPrimitivesBatch(target_, state_);
    Tq::Ptr<iGraphicPrimitivesRenderer> renderer(new BackBufferRenderer(batch_));
    renderer->setAntialiasingEnabled(antialias);
    return renderer;
}

Tq::Ptr<iImage> GLBackBufferGuard::createCompatibleImage(const XY<int>&) const
{
    return nullptr;
}
