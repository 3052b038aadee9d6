#pragma once

#include "OS/Host/Midi/EventDescriptor.h"

#include <atomic>

namespace OSInternal {

class MidiInputPort;

/// Delivers a port's packets on the thread that calls run(), between a start() and its stop(): a
/// stop that comes before run() is entered ends it at once, and one without a start changes
/// nothing.
class MidiRunLoop
{
public:
    /// Any thread. Call run() on the loop's own thread after it.
    void start() { running_.store(true); }
    /// Any thread.
    void stop();
    bool isRunning() const { return running_.load(); }

    /// Delivers until the stop. @param port null only waits
    void run(MidiInputPort* port);

private:
    std::atomic<bool> running_{false};
    EventDescriptor wake_;
};

} // namespace OSInternal
