#pragma once

#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>

#include "OS/Host/Midi/MidiSystem.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>

/// What the host's services would tell of changes.
struct MIDINotification;

/// Prints "MIDINotifyProc". Deliberately not registered with the services: counts ask afresh.
void MIDINotifyProc(const MIDINotification* message, void* reference);

/// iMIDI and iMIDIDeviceInfo on the host's services.
///
/// The connection is the process's: whichever MIDI made it, every device uses it.
class MIDI final : public iMIDI, public iMIDIDeviceInfo
{
public:
    using Maker = std::function<std::shared_ptr<OSInternal::MidiSystem>()>;

    /// @param maker what initialise() connects with; tests bring a fake
    explicit MIDI(Maker maker = &OSInternal::MidiSystem::open) : maker_(std::move(maker)) {}

    TqResult initialise() override;
    void deinitialise() override;
    TqResult open(iMidiInputDevice*& out, unsigned int index,
                  InputCallbackReceiver& receiver) override;
    TqResult open(iMidiOutputDevice*& out, unsigned int index,
                  OutputCallbackReceiver& receiver) override;
    unsigned int getNumInputDevs() override;
    unsigned int getNumOutputDevs() override;
    TqResult getInputDevCaps(unsigned int index, MIDIInCaps& caps) override;
    TqResult getOutputDevCaps(unsigned int index, MIDIOutCaps& caps) override;
    iMIDIHdr* allocHeader(unsigned short size) override;
    void freeHeader(iMIDIHdr* header) override;
    LightweightString<wchar_t> getResultText(TqResult result) override;

    bool getInputDevInfo(unsigned int index, MIDIDeviceInfo& info) override;
    bool getOutputDevInfo(unsigned int index, MIDIDeviceInfo& info) override;
    LightweightString<char> getServices() override;

    /// The connection; null before initialise() and after deinitialise().
    static std::shared_ptr<OSInternal::MidiSystem> client();

private:
    std::shared_ptr<OSInternal::MidiSystem> connected();

    static std::atomic<bool> initialised_;
    static std::atomic<MIDI*> instance_; // made the connection

    const Maker maker_;
    std::mutex lock_;
    std::shared_ptr<OSInternal::MidiSystem> client_; // under lock_
};
