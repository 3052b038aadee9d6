#pragma once

#include "View/EditorState.h"

namespace Vantor {

/// Draws one frame of the editor into a picture file, without a window.
///
/// @param scale pixels of the picture for each logical pixel of the state's size
/// @return what went wrong, in one line, or nothing
Text writeFrame(EditorState state, double scale, const Text& path);

} // namespace Vantor
