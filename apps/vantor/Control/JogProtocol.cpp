#include "Control/JogProtocol.h"

#include <charconv>
#include <cstdlib>

namespace Vantor {

namespace {

/// A whole number with or without a sign, and nothing behind it, within limits to both sides.
std::optional<int> numberIn(const char* from, const char* end, int limit)
{
    const bool signedUp = from != end && *from == '+';
    int number = 0;
    const auto read = std::from_chars(from + (signedUp ? 1 : 0), end, number);
    const bool twice = signedUp && from + 1 != end && from[1] == '-';
    if (read.ec != std::errc() || read.ptr != end || twice || std::abs(number) > limit)
        return std::nullopt;
    return number;
}

} // namespace

std::optional<ControlCommand> JogProtocol::take(unsigned char byte)
{
    if (byte == '\n' || byte == '\r') {
        const std::optional<ControlCommand> command = complete();
        length_ = 0;
        return command;
    }
    if (length_ < line_.size())
        line_[length_] = static_cast<char>(byte);
    if (length_ <= line_.size())
        ++length_;
    return std::nullopt;
}

std::optional<ControlCommand> JogProtocol::complete() const
{
    using Kind = ControlCommand::Kind;
    if (length_ == 0 || length_ > line_.size())
        return std::nullopt;
    const char* const end = line_.data() + length_;
    const char letter = line_[0];
    if (letter == 'J' || letter == 'S') {
        const std::optional<int> number =
            numberIn(line_.data() + 1, end, letter == 'J' ? kFurthestJog : kFastestShuttle);
        if (!number)
            return std::nullopt;
        return ControlCommand{letter == 'J' ? Kind::eJog : Kind::eShuttle, *number};
    }
    if (length_ != 1 || (letter != 'P' && letter != 'K'))
        return std::nullopt;
    return ControlCommand{letter == 'P' ? Kind::ePlay : Kind::eStop, 0};
}

} // namespace Vantor
