#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Painting/iRegion.h>
#include <OS/Primitives/AlphaRectDescription.h>
#include <OS/Primitives/BezierCurveDescription.h>
#include <OS/Primitives/EllipseDescription.h>
#include <OS/Primitives/ImageDescription.h>
#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/LineDescription.h>
#include <OS/Primitives/RectDescription.h>
#include <OS/Primitives/TextDescription.h>

/// What the application draws with: arrays of one kind of description at a time, in call order.
///
/// Got from a window, an image or a back buffer, used on that target's thread, and released when
/// the drawing is done: releasing a deferred renderer is what delivers its drawing. Arrays are read
/// during the call and not kept. A count of 0 draws nothing.
class OS_API iGraphicPrimitivesRenderer : public virtual iObject
{
public:
    ~iGraphicPrimitivesRenderer() override = default;

    /// Limits what follows to a region of this library's making; null ends the limit.
    virtual void setClipRegion(Tq::Ptr<iRegion> region) = 0;
    virtual void setAntialiasingEnabled(bool enabled) = 0;

    virtual void renderMulti(const RectDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const EllipseDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const LineDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const TextDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const AlphaRectDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const BezierCurveDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const ImageDescription* descs, unsigned int count) = 0;
    virtual void renderMulti(const ImageDescriptionEx* descs, unsigned int count) = 0;

    /// Draws one description.
    template <class T>
    void render(const T& desc)
    {
        renderMulti(&desc, 1);
    }
};
