#pragma once

#include "common/Geometry.h"

namespace Vantor {

/// How large the viewer shows the picture.
enum class ViewerZoom : int
{
    eFit = 0, ///< whole, as large as it goes
    eHalf,
    eFull, ///< a pixel of the sequence on each pixel of the screen
    eDouble
};
constexpr int kViewerZooms = 4;

/// What the user decides about the viewer: plain data.
struct ViewerChoices
{
    ViewerZoom zoom = ViewerZoom::eFit;
    App::Point shift = {}; ///< of the picture from the middle, where it is larger than the viewer
    bool safeAreas = true;
    bool timeCode = false;    ///< over the picture
    bool frameNumber = false; ///< likewise

    friend bool operator==(const ViewerChoices&, const ViewerChoices&) = default;
};

} // namespace Vantor
