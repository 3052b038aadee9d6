#pragma once

namespace Vantor {

/// The playhead and how fast it runs: plain data, moved on by advance().
struct Player
{
    int frame = 0;
    int speed = 0;         ///< times the normal speed, negative backwards, 0 stands still
    double fraction = 0.0; ///< of a frame, carried to the next advance
    int dropped = 0;       ///< frames that were never shown since playing began

    bool playing() const { return speed != 0; }

    void stop();
    /// Plays at normal speed from here, or from the start when the end is reached; stops when
    /// playing.
    void toggle(int length);
    /// J-K-L: each press of L plays forwards, then 2, 4 and 8 times as fast; J the same backwards.
    /// A press against the direction turns round at normal speed.
    void shuttle(int direction);
    /// Moves by whole frames, within the project, and stops.
    void step(int frames, int length);
    void seek(int target, int length);
    /// Moves on by a time. Stops at either end. @return whether the frame changed
    bool advance(double elapsedMs, int length);
};

} // namespace Vantor
