#pragma once

#include "View/BoardState.h"

namespace Quay {

/// Gathers everything there is, watching the meters for a while.
BoardData watch(int milliseconds);

/// Draws one frame of the board into a picture file, without a window.
///
/// @param scale pixels of the picture for each logical pixel of the state's size
/// @return what went wrong, in one line, or nothing
Text writeFrame(const BoardState& state, double scale, const Text& path);

/// Shows the board in a window, without what is remembered, and writes what the screen shows of it.
/// @return what went wrong, in one line, or nothing
Text grabFrame(BoardState state, const Text& path);

} // namespace Quay
