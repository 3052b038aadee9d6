#pragma once

#include <cstdint>

namespace Vantor {

/// What somebody does at a controller.
struct ControlCommand
{
    enum class Kind : std::uint8_t
    {
        eJog,     ///< by `value` frames, and stop
        eShuttle, ///< at `value` times the normal speed, -8 to 8; 0 stops
        ePlay,    ///< play or pause
        eStop,
        eForwards, ///< as the key L
        eBackwards ///< as the key J
    };
    Kind kind = Kind::eStop;
    int value = 0;

    friend bool operator==(const ControlCommand&, const ControlCommand&) = default;
};

/// The most frames that one message jogs by.
constexpr int kFurthestJog = 1000;
constexpr int kFastestShuttle = 8;

} // namespace Vantor
