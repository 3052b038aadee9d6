#pragma once

#include "OS/Mac/Painting/QtGraphicPrimitivesRenderer.h"

#include <OS/Primitives/GraphicPrimitivesList.h>

/// The Qt renderer as a processor: what a recording is replayed into.
///
/// Each batch sets its clip region, null for none, and is drawn.
class BatchRenderer final : public QtGraphicPrimitivesRenderer,
                            public GraphicPrimitivesList::iPrimitivesProcessor
{
public:
    using QtGraphicPrimitivesRenderer::QtGraphicPrimitivesRenderer;

    void process(const RectDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const EllipseDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const LineDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const TextDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const AlphaRectDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const BezierCurveDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const ImageDescription* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }
    void process(const ImageDescriptionEx* d, unsigned int n, const Clip& c) override
    {
        draw(d, n, c);
    }

private:
    template <class T>
    void draw(const T* descs, unsigned int count, const Clip& clip)
    {
        QtGraphicPrimitivesRenderer::setClipRegion(clip);
        QtGraphicPrimitivesRenderer::renderMulti(descs, count);
    }
};
