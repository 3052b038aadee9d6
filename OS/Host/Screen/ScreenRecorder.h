#pragma once

#include <string>

namespace Host {

/// Records the X11 display that the environment names into a QuickTime movie, with the mouse: H.264
/// where the installed libav has it, else MPEG-4. Blocks for as long as the movie is to be.
///
/// @param file empty, open for writing and seeking; stays the caller's
/// @return empty when the whole movie has been written, else the reason
std::string recordScreen(int file, int seconds);

} // namespace Host
