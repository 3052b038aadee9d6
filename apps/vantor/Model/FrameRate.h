#pragma once

#include "Model/Text.h"

#include <array>

namespace Vantor {

/// Frames a second as a fraction of whole numbers, so that 29.97 is exact.
struct FrameRate
{
    unsigned int numerator = 25;
    unsigned int denominator = 1;

    constexpr double perSecond() const
    {
        return static_cast<double>(numerator) / static_cast<double>(denominator);
    }
    constexpr double frameMs() const { return 1000.0 / perSecond(); }
    /// What a second of time code counts to: 30 for 29.97.
    constexpr int nominal() const
    {
        return static_cast<int>((numerator + denominator - 1) / denominator);
    }
    /// "25", "29.97".
    Text text() const
    {
        const auto hundredths = static_cast<int>(perSecond() * 100.0 + 0.5);
        const Text whole = decimal(hundredths / 100);
        return hundredths % 100 == 0 ? whole : whole + L"." + decimal(hundredths % 100, 2);
    }

    friend bool operator==(const FrameRate&, const FrameRate&) = default;
};

/// The rates that a sequence can be played at, slowest first.
constexpr std::array<FrameRate, 6> kFrameRates = {FrameRate{24, 1},       FrameRate{25, 1},
                                                  FrameRate{30000, 1001}, FrameRate{30, 1},
                                                  FrameRate{50, 1},       FrameRate{60, 1}};
/// The place of 25 among them.
constexpr int kUsualRate = 1;

} // namespace Vantor
