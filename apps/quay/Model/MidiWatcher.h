#pragma once

#include "Model/BoardData.h"

#include <OS/Devices/iMidiInputDevice.h>

#include <functional>
#include <memory>

namespace Quay {

/// Listens to a MIDI input. Used on the thread of the event loop.
class MidiWatcher
{
public:
    /// @param news called on the device's thread, without locks, when messages can be taken
    explicit MidiWatcher(std::function<void()> news);
    ~MidiWatcher();
    MidiWatcher(const MidiWatcher&) = delete;
    MidiWatcher& operator=(const MidiWatcher&) = delete;

    /// Lets go of the input before, and opens another. @return what is known of it now
    MidiMonitor watch(const Text& name);
    void stop();
    /// Adds what has come. @return whether anything has
    bool take(MidiMonitor& monitor);

private:
    class Inbox;

    std::function<void()> news_;
    std::unique_ptr<Inbox> inbox_;
    std::unique_ptr<iMidiInputDevice> device_; // goes before the inbox
};

} // namespace Quay
