#include "Control/MidiCommands.h"

#include <cstdlib>

namespace Vantor {

namespace {

using Kind = ControlCommand::Kind;

constexpr unsigned int kNoteOn = 0x90;
constexpr unsigned int kControlChange = 0xB0;
constexpr unsigned int kJog = 60;
constexpr unsigned int kShuttle = 61;
constexpr int kMiddle = 64;

std::optional<ControlCommand> controlOf(unsigned int control, int value)
{
    if (control == kJog && value != 0 && value != kMiddle)
        return ControlCommand{Kind::eJog, value < kMiddle ? value : value - 128};
    if (control != kShuttle)
        return std::nullopt;
    const int away = value - kMiddle;
    if (away == 0)
        return ControlCommand{Kind::eShuttle, 0};
    // Sixteen steps of the wheel for each speed.
    const int speed = 1 << ((std::abs(away) - 1) / 16);
    return ControlCommand{Kind::eShuttle, away > 0 ? speed : -speed};
}

std::optional<ControlCommand> noteOf(unsigned int note)
{
    switch (note) {
    case 60:
        return ControlCommand{Kind::eStop, 0};
    case 62:
        return ControlCommand{Kind::ePlay, 0};
    case 64:
        return ControlCommand{Kind::eBackwards, 0};
    case 65:
        return ControlCommand{Kind::eForwards, 0};
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<ControlCommand> commandOf(unsigned int message)
{
    const unsigned int status = message & 0xF0;
    const unsigned int first = message >> 8 & 0xFF;
    const unsigned int second = message >> 16 & 0xFF;
    if (first > 0x7F || second > 0x7F)
        return std::nullopt;
    if (status == kControlChange)
        return controlOf(first, static_cast<int>(second));
    if (status == kNoteOn && second != 0)
        return noteOf(first);
    return std::nullopt;
}

} // namespace Vantor
