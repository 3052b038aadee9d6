#pragma once

#include <OS/Devices/iMidiInputDevice.h>

#include "OS/Host/Midi/MidiSystem.h"
#include "OS/Mac/Devices/MidiCommandHandler.h"
#include "OS/Mac/Devices/MidiPacketWalk.h"

#include <memory>

/// iMidiInputDevice. Its packets are walked on its thread.
class MidiInputDevice final : public iMidiInputDevice,
                              public MidiCommandHandler,
                              private OSInternal::MidiPacketSink
{
public:
    MidiInputDevice(unsigned int index, InputCallbackReceiver& receiver);
    ~MidiInputDevice() override;

    TqResult close() override;
    TqResult start() override;
    TqResult stop() override;
    TqResult reset() override { return 1; }
    TqResult getID(unsigned int&) override { return 1; }

private:
    TqResult openPort() override;
    TqResult closePort() override;
    OSInternal::MidiInputPort* inputPort() override { return port_.get(); }
    void handlePacket(const unsigned char* data, std::size_t length) override;

    const unsigned int index_;
    std::unique_ptr<OSInternal::MidiInputPort> port_; // the thread's
    MidiPacketWalk walk_;                             // the thread's
};
