#pragma once

#include "Model/FrameRate.h"

#include <cstdint>
#include <functional>
#include <vector>

namespace Vantor {

/// Milliseconds of the steady clock.
double steadyMs();

/// The playhead and how it runs: play, J-K-L, steps and ends. Knows no windows, threads or
/// pictures.
///
/// While it runs the place is derived from the clock, so that what comes late is left out and never
/// slows the rest down. Plain data: a copy runs on like the original.
class Transport
{
public:
    static constexpr int kFastest = 8;
    /// Milliseconds, which never go back.
    using Clock = std::function<double()>;

    explicit Transport(Clock clock = steadyMs);

    int frame() const { return frame_; } ///< as of the last command or update()
    int speed() const { return speed_; } ///< times the normal speed, negative backwards
    bool playing() const { return speed_ != 0; }
    int length() const { return length_; } ///< frames
    const FrameRate& rate() const { return rate_; }
    bool loops() const { return loops_; }
    double now() const { return clock_(); }

    void setLength(int frames); ///< the playhead stays within
    void setRate(const FrameRate& rate);
    void setLoop(bool loops);

    /// Plays at normal speed from here, or from the start when the end is reached; stops when
    /// playing.
    void toggle();
    void stop();
    /// J-K-L: each press of L plays forwards, then 2, 4 and 8 times as fast; J the same backwards.
    /// A press against the direction turns round at normal speed.
    void shuttle(int direction);
    /// Plays at so many times the normal speed, backwards below 0; 0 stops.
    void playAt(int speed);
    /// Moves by whole frames and stops.
    void step(int frames);
    /// Goes to a frame, or to the nearest there is; playing goes on from there.
    void seek(int target);

    /// Brings frame() to where the clock is. Without a loop it stops at either end.
    /// @return whether anything changed
    bool update();

    // -- What a player of pictures asks, at any time from the last command on

    /// How many frames should have been shown since the last command.
    std::int64_t ticksAt(double ms) const;
    int frameAt(double ms) const;
    /// When the frame of that time gives way to the next one; infinite when nothing runs.
    double nextChange(double ms) const;
    /// The frames to be shown from then on, each once, the present one first. When nothing runs:
    /// those that a step or a start would show.
    std::vector<int> ahead(double ms, int count) const;
    /// A number that changes with every command that moves the playhead or its speed.
    std::uint64_t run() const { return run_; }

private:
    int frameOfTick(std::int64_t tick) const;
    void anchor(int frame, int speed);

    Clock clock_;
    FrameRate rate_;
    int length_ = 0;
    bool loops_ = false;
    int frame_ = 0;
    int speed_ = 0;
    int startFrame_ = 0; ///< where it stood at startMs_
    double startMs_ = 0.0;
    std::uint64_t run_ = 0;
};

} // namespace Vantor
