#pragma once

#include "Model/FrameRate.h"
#include "Model/ViewerChoices.h"
#include "common/Canvas.h"

#include <functional>

namespace Vantor {

/// Writes words into the middle of a plate: with text, or with pictures of digits where the
/// renderer has no text.
using WriteOn = std::function<void(const Text& words, const Rect& plate, int height)>;

/// What lies over the viewer's picture: safe areas, time code and frame number, as chosen.
/// @param screen what of the picture is seen
void drawOverlays(Canvas& canvas, const Rect& picture, const Rect& screen,
                  const ViewerChoices& choices, int frame, const FrameRate& rate,
                  const WriteOn& write);

} // namespace Vantor
