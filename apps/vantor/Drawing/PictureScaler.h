#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Primitives/Rectangle.h>

namespace Vantor {

/// Draws a part of a picture into all of another one, smaller or larger: the average of the covered
/// area when it shrinks, between the nearest four pixels when it grows. The target is
/// premultiplied.
///
/// @return false, with nothing drawn, when either has no pixels or the part is empty
bool scalePicture(const Tq::Ptr<iHostImage>& source, const Tq::Rectangle<int>& part,
                  const Tq::Ptr<iHostImage>& target);

/// The largest part in the middle of a picture that has the shape of `shape`.
Tq::Rectangle<int> partOfShape(const XY<int>& picture, const XY<int>& shape);
/// The largest rectangle in the middle of `room` that has a picture's shape.
Tq::Rectangle<int> fitInto(const XY<int>& picture, const Tq::Rectangle<int>& room);

} // namespace Vantor
