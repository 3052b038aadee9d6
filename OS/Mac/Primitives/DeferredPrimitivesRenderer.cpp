#include "OS/Mac/Primitives/DeferredPrimitivesRenderer.h"

#include <utility>

DeferredPrimitivesRenderer::DeferredPrimitivesRenderer(iGraphicPrimitivesBatchRenderer* target)
    : target_(target), batch_{new GraphicPrimitivesList, true}
{
}

DeferredPrimitivesRenderer::~DeferredPrimitivesRenderer()
{
    target_->render(batch_);
}

void DeferredPrimitivesRenderer::setClipRegion(Tq::Ptr<iRegion> region)
{
    clipRegion_ = std::move(region);
}

void DeferredPrimitivesRenderer::setAntialiasingEnabled(bool enabled)
{
    batch_.antialias = enabled;
}

void DeferredPrimitivesRenderer::renderMulti(const RectDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const EllipseDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const LineDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const TextDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const AlphaRectDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const BezierCurveDescription* descs,
                                             unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const ImageDescription* descs, unsigned int count)
{
    record(descs, count);
}

void DeferredPrimitivesRenderer::renderMulti(const ImageDescriptionEx* descs, unsigned int count)
{
    record(descs, count);
}
