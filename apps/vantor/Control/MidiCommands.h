#pragma once

#include "Control/ControlCommand.h"

#include <optional>

namespace Vantor {

/// What a message of a MIDI controller means, on any channel:
///
///     control change 60   jog: 1 to 63 frames forwards; 127 to 65 are 1 to 63 backwards
///     control change 61   shuttle: 64 stops, above it forwards, below backwards; the further away
///                         the faster: 1, 2, 4 and 8 times
///     note on 60, 62, 64, 65   stop, play or pause, backwards, forwards; velocity 0 is no note
///
/// (The channel voice messages of MIDI 1.0.) Anything else means nothing.
/// @param message its bytes, lowest first
std::optional<ControlCommand> commandOf(unsigned int message);

} // namespace Vantor
