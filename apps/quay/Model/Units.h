#pragma once

#include "Model/Text.h"

#include <cstdint>

namespace Quay {

/// How sizes are told: by powers of 1024 (GiB) or of 1000 (GB).
enum class Units : int
{
    eBinary,
    eDecimal
};

/// A number of bytes with three digits or so: "0 B", "1.5 KiB", "931 GiB".
Text sizeText(std::uint64_t bytes, Units units);
/// A part of a whole in percent, "0 %" to "100 %": only nothing is 0 and only the whole is 100.
Text percentText(double part);
/// A number with at most two decimals, none that say nothing: "1", "1.25", "59.94".
Text shortNumber(double value);
/// "1 drive", "2 drives".
Text countText(std::size_t count, const wchar_t* one, const wchar_t* many);
/// So many digits, from the lowest up: "0F".
Text hexText(std::uint64_t value, int digits);
/// A time such as "½ s" or "5 s".
Text intervalText(int ms);

} // namespace Quay
