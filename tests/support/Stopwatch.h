#pragma once

#include <chrono>

/// Milliseconds since it was made.
class Stopwatch
{
public:
    double elapsedMs() const
    {
        return std::chrono::duration<double, std::milli>(Clock::now() - start_).count();
    }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point start_ = Clock::now();
};
