#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace Quay {

/// How long a processor has been busy and idle since the start of the machine, in the kernel's
/// ticks.
struct ProcessorTimes
{
    std::uint64_t busy = 0;
    std::uint64_t idle = 0;
};

/// Reads the text of /proc/stat: all processors together at first, then each online one by its
/// number. Processors that are not there have zeros; a text that is something else gives nothing.
std::vector<ProcessorTimes> parseProcessorTimes(std::string_view text);

/// The busy part, 0 to 1, of the time between two readings; 0 where no time has passed.
double loadBetween(const ProcessorTimes& before, const ProcessorTimes& after);

} // namespace Quay
