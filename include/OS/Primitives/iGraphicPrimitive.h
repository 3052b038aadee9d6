#pragma once

#include <OS/Core/iObject.h>
#include <OS/Primitives/Rectangle.h>

/// The base of everything that can be drawn.
///
/// Descriptions are plain values: copied into lists and arrays, never shared through Tq::Ptr. The
/// count they inherit is copied with the rest and means nothing.
class OS_API iGraphicPrimitive : public virtual iObject
{
public:
    ~iGraphicPrimitive() override = default;
    /// The area that the primitive touches, in pixels of the target.
    virtual Tq::Rectangle<int> getBounds() const = 0;
};
