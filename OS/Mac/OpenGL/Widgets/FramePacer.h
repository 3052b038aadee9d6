#pragma once

#include <cstdint>

/// Works out when frames are due: on a grid of exact times, which never drifts. Plain arithmetic;
/// its owner brings the time.
class FramePacer
{
public:
    struct Slot
    {
        std::int64_t dueNs; ///< not after `now` when the frame is to be shown at once
        bool late;          ///< its time had passed
    };

    /// Frames from the next on are due `denominator / numerator` seconds apart, on a grid that
    /// begins with that frame; with 0, at once.
    /// @return false, and nothing changes, for a denominator of 0 or more than 1000 frames a second
    bool setRate(unsigned int numerator, unsigned int denominator);

    /// The time of one more frame, never before an earlier frame's. A late frame takes the last
    /// time that has passed: what was missed is missed, and the frame after it is due on the grid.
    /// @param nowNs nanoseconds of a clock that only advances
    Slot next(std::int64_t nowNs);

private:
    std::int64_t timeOf(std::int64_t index) const;
    std::int64_t indexAt(std::int64_t ns) const;

    unsigned int numerator_ = 0;
    unsigned int denominator_ = 1;
    bool begun_ = false; // the grid has a beginning
    std::int64_t beginNs_ = 0;
    std::int64_t index_ = 0; // of the last frame
    std::int64_t lastDueNs_ = 0;
};
