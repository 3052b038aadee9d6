#pragma once

#include "Control/ControlCommand.h"

#include <array>
#include <cstddef>
#include <optional>

namespace Vantor {

/// The protocol of a serial jog wheel: lines of ASCII at 9600 baud, eight bits, no parity, one stop
/// bit, each ended by a line feed or a carriage return.
///
///     J+12   jog by so many frames, -1000 to 1000
///     S-4    shuttle: times the normal speed, -8 to 8; S0 stops
///     P      play or pause
///     K      stop
///
/// Anything else is passed over up to the end of its line, lines longer than 7 characters too.
/// Plain data.
class JogProtocol
{
public:
    /// Takes the next byte. @return the command that it completes
    std::optional<ControlCommand> take(unsigned char byte);

private:
    std::optional<ControlCommand> complete() const;

    std::array<char, 7> line_ = {};
    std::size_t length_ = 0; ///< beyond the line's size: it is too long
};

} // namespace Vantor
