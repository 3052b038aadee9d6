#pragma once

#include "programs/Trace.h"

#include <cstddef>
#include <string>
#include <vector>

/// A trace in the form in which it can be played again: the calls of every thread in order, and
/// for each call whose turn it is among those on its block.
struct Recording
{
    struct Step
    {
        Trace::Record record;
        std::uint32_t turn; // how many calls on the same block come before
    };

    std::string program;
    std::vector<std::vector<Step>> threads;
    std::size_t steps = 0;
    std::size_t blocks = 0;
    std::size_t handedOver = 0; // how many calls are on a block that another thread touched last

    /// Reads a trace, at most so many calls of it. Throws std::runtime_error, which says what is
    /// wrong with it.
    static Recording read(const std::string& path, std::size_t mostSteps = kAll);
    static constexpr std::size_t kAll = static_cast<std::size_t>(-1);
};
