#pragma once

#include "Model/Text.h"
#include "Model/ViewerChoices.h"

namespace Vantor {

/// Pixels of the sequence, whatever its clips have.
inline const Point kSequenceSize{1920, 1080};

/// Where the picture lies in a viewer: a pure function.
///
/// @param screen what the viewer covers @param stage what a whole picture is fitted into
/// @param ratio device pixels for each logical pixel
/// @param choices the shift goes no further than to the picture's edges
Rect placePicture(const Rect& screen, const Rect& stage, double ratio,
                  const ViewerChoices& choices);
/// The shift that placePicture really uses.
Point soundShift(const Rect& screen, double ratio, const ViewerChoices& choices);
/// Percent of the sequence's size at which a picture of a width is shown.
int zoomPercent(int width, double ratio);

/// What is drawn over a picture: the areas as shares of it, the plates within what of it is seen.
struct OverlayPlaces
{
    Rect action;      ///< what every screen shows: 3.5 % from each edge
    Rect title;       ///< where titles may stand: 5 %
    Rect timeCode;    ///< a plate, bottom centre; empty where the picture is too small
    Rect frameNumber; ///< a plate, top right; likewise
    int digit = 0;    ///< height of the digits on the plates
};
OverlayPlaces placeOverlays(const Rect& picture, const Rect& screen, int timeCodeLetters,
                            int frameNumberLetters);

} // namespace Vantor
