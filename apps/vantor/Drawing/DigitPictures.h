#pragma once

#include "common/Canvas.h"

#include <OS/Painting/iHostImage.h>

#include <map>
#include <tuple>

namespace Vantor {

using namespace App;

/// Pictures of the letters of numbers and time codes, for renderers that draw images but no text.
/// Made once for each size; used on one thread.
class DigitPictures
{
public:
    /// Writes digits and colons into the middle of a plate. @param ratio device pixels for each
    /// logical pixel of the canvas
    void write(Canvas& canvas, const Text& words, const Rect& plate, int height, double ratio);

private:
    Tq::Ptr<iHostImage> get(wchar_t letter, const Point& size, int height);

    using Key = std::tuple<wchar_t, int, int>; ///< and the size
    std::map<Key, Tq::Ptr<iHostImage>> made_;
    Resources resources_{1.0};
};

} // namespace Vantor
