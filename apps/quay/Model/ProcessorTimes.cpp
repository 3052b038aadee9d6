#include "Model/ProcessorTimes.h"

#include <algorithm>
#include <charconv>
#include <cstddef>

namespace Quay {

namespace {

constexpr std::size_t kMostProcessors = 8192; ///< a line that tells of more is damaged

std::string_view takeWord(std::string_view& line)
{
    line.remove_prefix(std::min(line.find_first_not_of(' '), line.size()));
    const std::string_view word = line.substr(0, line.find(' '));
    line.remove_prefix(word.size());
    return word;
}

bool number(std::string_view text, std::uint64_t& value)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

// user, nice, system, idle, waiting for devices, interrupts, soft interrupts, stolen; what follows
// is counted in user and nice already (proc(5)).
ProcessorTimes parseTimes(std::string_view line)
{
    ProcessorTimes times;
    for (int column = 0; column < 8; ++column) {
        std::uint64_t ticks = 0;
        if (!number(takeWord(line), ticks))
            break;
        (column == 3 || column == 4 ? times.idle : times.busy) += ticks;
    }
    return times;
}

} // namespace

std::vector<ProcessorTimes> parseProcessorTimes(std::string_view text)
{
    std::vector<ProcessorTimes> all;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        std::string_view name = takeWord(line);
        if (!name.starts_with("cpu"))
            continue;
        name.remove_prefix(3);
        std::uint64_t place = 0;
        if (!name.empty() && (!number(name, place) || place >= kMostProcessors))
            continue;
        const std::size_t index = name.empty() ? 0 : static_cast<std::size_t>(place) + 1;
        if (all.size() <= index)
            all.resize(index + 1);
        all[index] = parseTimes(line);
    }
    return all;
}

double loadBetween(const ProcessorTimes& before, const ProcessorTimes& after)
{
    // The kernel's idle count may step back a little.
    const std::uint64_t busy = after.busy > before.busy ? after.busy - before.busy : 0;
    const std::uint64_t idle = after.idle > before.idle ? after.idle - before.idle : 0;
    return busy + idle == 0 ? 0.0 : static_cast<double>(busy) / static_cast<double>(busy + idle);
}

} // namespace Quay
