#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWidgetPrimitivesBatch.h"

#include "OS/Mac/OpenGL/Drawing/OpenGLGraphicPrimitivesRenderer.h"

#include <utility>

namespace {

Tq::Ptr<iGraphicPrimitivesRenderer> makeGLRenderer(const XY<int>& logicalSize, double ratio)
{
    return new OpenGLGraphicPrimitivesRenderer(logicalSize, ratio,
                                               OpenGLGraphicPrimitivesRenderer::eWindow);
}

std::atomic<QtGLWidgetPrimitivesBatch::RendererFactory> rendererFactory{makeGLRenderer};

} // namespace

void QtGLWidgetPrimitivesBatch::setRendererFactory(RendererFactory factory)
{
    rendererFactory.store(factory ? factory : makeGLRenderer);
}

QtGLWidgetPrimitivesBatch::QtGLWidgetPrimitivesBatch(GLRenderTarget* target)
    : QtGLWidgetPrimitivesBatch(target, target ? target->getState() : nullptr)
{
}

QtGLWidgetPrimitivesBatch::QtGLWidgetPrimitivesBatch(GLRenderTarget* target,
                                                     Tq::Ptr<RenderTargetState> state)
    : target_(target), state_(std::move(state))
{
}

void QtGLWidgetPrimitivesBatch::execute()
{
    draw();
}

bool QtGLWidgetPrimitivesBatch::draw()
{
    return draw(false);
}

void QtGLWidgetPrimitivesBatch::drawAgain()
{
    draw(true);
}

bool QtGLWidgetPrimitivesBatch::draw(bool onBlack)
{
    if (!target_ || !state_->isAlive() || empty())
        return false;
    const bool ready = target_->beginRender();
    if (ready) {
        if (onBlack) {
            glDisable(GL_SCISSOR_TEST);
            glClearColor(0.0f, 0.0f, 0.0f, 1.0f);
            glClear(GL_COLOR_BUFFER_BIT);
        }
        replay();
        target_->noteDrawn(*this);
    }
    return target_->endRender() && ready;
}

void QtGLWidgetPrimitivesBatch::replay()
{
    const RenderTargetState::Measures measures = state_->getMeasures();
    const XY<int> pixels = measures.deviceSize();
    glViewport(0, 0, pixels.x, pixels.y);
    renderer_ = rendererFactory.load()(measures.size, measures.ratio);
    if (renderer_)
        GraphicPrimitivesList::process(*this);
    renderer_.reset();
}

template <class T>
void QtGLWidgetPrimitivesBatch::render(const T* descs, unsigned int count, const Clip& clip)
{
    renderer_->setClipRegion(clip);
    renderer_->renderMulti(descs, count);
}

void QtGLWidgetPrimitivesBatch::process(const RectDescription* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const EllipseDescription* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const LineDescription* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const TextDescription* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const AlphaRectDescription* d, unsigned int n,
                                        const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const BezierCurveDescription* d, unsigned int n,
                                        const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const ImageDescription* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}

void QtGLWidgetPrimitivesBatch::process(const ImageDescriptionEx* d, unsigned int n, const Clip& c)
{
    render(d, n, c);
}
