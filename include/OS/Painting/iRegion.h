#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/Rectangle.h>

#include <cstdint>

/// A set of rectangles: a clip for drawing, or the shape of a window. Made by
/// iWindowManager::createRegion. Used by one thread at a time.
class OS_API iRegion : public iObject
{
public:
    /// The smallest rectangle around the region; all zero when it is empty.
    virtual Tq::Rectangle<int> getBounds() const = 0;
    /// A number of this region's own; a clone has another.
    virtual std::uint32_t getUniqueID() const = 0;
    /// True when the region is exactly one rectangle.
    virtual bool isRectangular() const = 0;
    virtual bool contains(const XY<int>& point) const = 0;
    virtual void translate(int dx, int dy) = 0;
    /// An independent copy.
    virtual Tq::Ptr<iRegion> clone() const = 0;
};
