#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iImageBase.h>
#include <OS/Primitives/XY.h>

class iGraphicPrimitivesRenderer;

/// An image with a size that can be drawn on and drawn with.
class OS_API iImage : public iImageBase
{
public:
    /// Where the pixels live.
    enum eLocation : int
    {
        eInHostMemory = 0,
        eOnGPU = 1
    };

    ~iImage() override = default;

    /// Logical size in pixels; (0, 0) when the image has no pixels.
    virtual XY<int> getSize() const = 0;
    virtual eLocation getLocation() const = 0;
    virtual int getBitsPerPixel() const = 0;
    /// A renderer that draws on the image, for the calling thread; null where that cannot be.
    /// Include <OS/Primitives/iGraphicPrimitivesRenderer.h> to use it.
    virtual Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) = 0;
    /// Another image for the same use; null where there is none.
    virtual Tq::Ptr<iImage> createCompatibleImage(const XY<int>& size) const = 0;
};
