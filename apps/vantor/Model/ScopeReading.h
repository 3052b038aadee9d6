#pragma once

#include "Model/Text.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace Vantor {

/// The pixels of one picture, counted. Levels are 0 to 255.
struct ScopeCounts
{
    static constexpr int kLevels = 256;

    int columns = 0;                      ///< of the waveform
    int pixels = 0;                       ///< of the picture
    std::vector<std::uint32_t> waveform;  ///< by luma, from black, and column
    std::vector<std::uint32_t> vectors;   ///< by Cr and Cb, from -0.5
    std::vector<std::uint32_t> histogram; ///< of red, green, blue and luma
};

/// What the scopes show.
struct ScopeReading
{
    std::shared_ptr<const ScopeCounts> counts; ///< null: not measured yet
    Text trouble;                              ///< why nothing can be measured; empty: it can be

    friend bool operator==(const ScopeReading&, const ScopeReading&) = default;
};

} // namespace Vantor
