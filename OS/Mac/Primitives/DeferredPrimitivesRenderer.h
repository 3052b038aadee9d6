#pragma once

#include <OS/Primitives/PrimitivesBatch.h>
#include <OS/Primitives/iGraphicPrimitivesBatchRenderer.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

/// Records instead of drawing, and hands the recording over when it is released.
///
/// May be filled on any thread; release it on the thread that the target belongs to.
class DeferredPrimitivesRenderer final : public iGraphicPrimitivesRenderer
{
public:
    /// @param target receives the batch; not owned, outlives the renderer
    explicit DeferredPrimitivesRenderer(iGraphicPrimitivesBatchRenderer* target);
    /// Delivers the batch. An exception of the target's ends the process.
    ~DeferredPrimitivesRenderer() override;

    void setClipRegion(Tq::Ptr<iRegion> region) override;
    void setAntialiasingEnabled(bool enabled) override;
    void renderMulti(const RectDescription* descs, unsigned int count) override;
    void renderMulti(const EllipseDescription* descs, unsigned int count) override;
    void renderMulti(const LineDescription* descs, unsigned int count) override;
    void renderMulti(const TextDescription* descs, unsigned int count) override;
    void renderMulti(const AlphaRectDescription* descs, unsigned int count) override;
    void renderMulti(const BezierCurveDescription* descs, unsigned int count) override;
    void renderMulti(const ImageDescription* descs, unsigned int count) override;
    void renderMulti(const ImageDescriptionEx* descs, unsigned int count) override;

private:
    template <class T>
    void record(const T* descs, unsigned int count)
    {
        batch_.list->push_back(descs, count, clipRegion_);
    }

    iGraphicPrimitivesBatchRenderer* target_;
    PrimitivesBatch batch_;
    Tq::Ptr<iRegion> clipRegion_;
};
