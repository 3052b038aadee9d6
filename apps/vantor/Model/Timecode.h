#pragma once

#include "Model/Text.h"

namespace Vantor::Timecode {

/// Frames a second of every project.
constexpr int kFrameRate = 25;

constexpr int fromSeconds(int seconds, int frames = 0)
{
    return seconds * kFrameRate + frames;
}

/// "HH:MM:SS:FF". Negative frames count as 0; from 100 hours on the hours take more digits.
Text full(int frame);
/// "MM:SS" for the ruler, with the hours in front from one hour on.
Text minutes(int frame);
/// A length for people: "6 s 12 fr", "31 s", "12 fr".
Text length(int frames);

} // namespace Vantor::Timecode
