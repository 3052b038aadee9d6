#pragma once

#include "Model/FrameRate.h"
#include "Model/Text.h"

#include <optional>

/// Time code without dropped numbers: at 29.97 a second of time code counts 30 frames.
namespace Vantor::Timecode {

constexpr FrameRate kUsual = kFrameRates[kUsualRate];

constexpr int fromSeconds(int seconds, int frames = 0, const FrameRate& rate = kUsual)
{
    return seconds * rate.nominal() + frames;
}

/// "HH:MM:SS:FF". Negative frames count as 0; from 100 hours on the hours take more digits.
Text full(int frame, const FrameRate& rate);
/// "MM:SS" for the ruler, with the hours in front from one hour on.
Text minutes(int frame, const FrameRate& rate);
/// A length for people: "6 s 12 fr", "31 s", "12 fr".
Text length(int frames, const FrameRate& rate);
/// The frame that "HH:MM:SS:FF", or the last parts of it, names; nothing for any other text.
std::optional<int> parse(const Text& text, const FrameRate& rate);

} // namespace Vantor::Timecode
