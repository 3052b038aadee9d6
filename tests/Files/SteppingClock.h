#pragma once

/// Lets every look of the calling thread at the monotonic clock find it so much later, while in
/// scope. For a program linked with --wrap=clock_gettime.
class SteppingClock
{
public:
    explicit SteppingClock(int stepMs);
    SteppingClock(const SteppingClock&) = delete;
    SteppingClock& operator=(const SteppingClock&) = delete;
    ~SteppingClock();
};
