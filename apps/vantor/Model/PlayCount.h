#pragma once

#include <cstdint>
#include <deque>

namespace Vantor {

/// Counts what became of the frames while playing: plain data.
class PlayCount
{
public:
    /// A frame is shown. @param run of the transport @param tick of the frame within it
    /// @param playing a picture that stands still is shown, but belongs to no rate
    void show(std::uint64_t run, std::int64_t tick, double ms, bool playing);

    std::uint64_t shown() const { return shown_; }
    /// Frames of runs whose time passed before they could be shown.
    std::uint64_t dropped() const { return dropped_; }
    /// Frames a second over the last two seconds of the run; 0 until there is something to tell.
    double rate() const;

private:
    std::uint64_t shown_ = 0;
    std::uint64_t dropped_ = 0;
    std::uint64_t run_ = 0;
    std::int64_t tick_ = 0;
    std::deque<double> shownMs_;
};

} // namespace Vantor
