#pragma once

#include <OS/Devices/MIDICallbacks.h>
#include <OS/Devices/iMidiOutputDevice.h>

#include "OS/Host/Midi/MidiSystem.h"
#include "OS/Mac/Devices/MidiCommandHandler.h"

#include <memory>

/// iMidiOutputDevice. Messages are sent on the caller's thread, long ones on "MIDISysEx".
class MidiOutputDevice final : public iMidiOutputDevice, public MidiCommandHandler
{
public:
    MidiOutputDevice(unsigned int index, OutputCallbackReceiver& receiver);
    ~MidiOutputDevice() override;

    TqResult close() override;
    TqResult unprepareHeader(iMIDIHdr* header) override;
    TqResult shortMsg(unsigned int message) override;
    TqResult longMsg(iMIDIHdr* header, unsigned int length) override;
    TqResult reset() override { return 1; }
    TqResult getID(unsigned int&) override { return 1; }

private:
    TqResult openPort() override;
    TqResult closePort() override;

    [[maybe_unused]] OutputCallbackReceiver* const receiver_; // never called
    const unsigned int index_;
    std::shared_ptr<OSInternal::MidiSystem> client_; // both set by the thread while open() waits
    std::shared_ptr<OSInternal::MidiOutputPort> port_;
};
