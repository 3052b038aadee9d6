#include "Files/SteppingClock.h"

#include <ctime>

namespace {

thread_local int step = 0;
thread_local long steppedMs = 0;

} // namespace

SteppingClock::SteppingClock(int stepMs)
{
    step = stepMs;
    steppedMs = 1'000'000;
}

SteppingClock::~SteppingClock()
{
    step = 0;
}

extern "C" int __real_clock_gettime(clockid_t clock, timespec* time);
extern "C" int __wrap_clock_gettime(clockid_t clock, timespec* time)
{
    if (step == 0 || clock != CLOCK_MONOTONIC)
        return __real_clock_gettime(clock, time);
    steppedMs += step;
    *time = {steppedMs / 1000, (steppedMs % 1000) * 1'000'000};
    return 0;
}
