#include "OS/Mac/Devices/MIDI.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Devices/MIDIHdr.h"
#include "OS/Mac/Devices/MidiInputDevice.h"
#include "OS/Mac/Devices/MidiOutputDevice.h"

#include <cerrno>

using OSInternal::MidiEndpoint;
using OSInternal::MidiSystem;

std::atomic<bool> MIDI::initialised_{false};
std::atomic<MIDI*> MIDI::instance_{nullptr};

void MIDINotifyProc(const MIDINotification*, void*)
{
    OSInternal::printLine("MIDINotifyProc");
}

TqResult MIDI::initialise()
{
    const std::lock_guard<std::mutex> lock(lock_);
    if (initialised_)
        return 1;
    client_ = maker_();
    instance_ = this;
    initialised_ = true;
    return OStoTqErr(client_ ? 0 : -ENODEV);
}

void MIDI::deinitialise()
{
    MIDI* const maker = instance_;
    if (!maker)
        return;
    std::shared_ptr<MidiSystem> client;
    {
        const std::lock_guard<std::mutex> lock(maker->lock_);
        if (!initialised_.exchange(false))
            return;
        instance_ = nullptr;
        client.swap(maker->client_);
    }
    if (client)
        client->shutDown();
}

std::shared_ptr<MidiSystem> MIDI::client()
{
    MIDI* const maker = instance_;
    if (!maker)
        return nullptr;
    const std::lock_guard<std::mutex> lock(maker->lock_);
    return maker->client_;
}

std::shared_ptr<MidiSystem> MIDI::connected()
{
    initialise();
    return client();
}

TqResult MIDI::open(iMidiInputDevice*& out, unsigned int index, InputCallbackReceiver& receiver)
{
    auto* device = new MidiInputDevice(index, receiver);
    out = device;
    return device->executeCommand(MidiCommandHandler::eOpenInput, true);
}

TqResult MIDI::open(iMidiOutputDevice*& out, unsigned int index, OutputCallbackReceiver& receiver)
{
    auto* device = new MidiOutputDevice(index, receiver);
    out = device;
    return device->executeCommand(MidiCommandHandler::eOpenOutput, true);
}

unsigned int MIDI::getNumInputDevs()
{
    const auto system = connected();
    return system ? static_cast<unsigned int>(system->sources().size()) : 0;
}

unsigned int MIDI::getNumOutputDevs()
{
    const auto system = connected();
    return system ? static_cast<unsigned int>(system->destinations().size()) : 0;
}

TqResult MIDI::getInputDevCaps(unsigned int, MIDIInCaps&)
{
    return 1;
}

TqResult MIDI::getOutputDevCaps(unsigned int, MIDIOutCaps&)
{
    return 1;
}

iMIDIHdr* MIDI::allocHeader(unsigned short size)
{
    return new MIDIHdr(size);
}

void MIDI::freeHeader(iMIDIHdr* header)
{
    delete static_cast<MIDIHdr*>(header);
}

LightweightString<wchar_t> MIDI::getResultText(TqResult)
{
    return {};
}

namespace {

bool describe(const std::vector<MidiEndpoint>& endpoints, unsigned int index, MIDIDeviceInfo& info)
{
    if (index >= endpoints.size())
        return false;
    const MidiEndpoint& found = endpoints[index];
    info.name_ = OSInternal::textFromSystem(found.name_);
    info.manufacturer_ = OSInternal::textFromSystem(found.manufacturer_);
    info.isVirtual_ = found.isVirtual_;
    return true;
}

} // namespace

bool MIDI::getInputDevInfo(unsigned int index, MIDIDeviceInfo& info)
{
    const auto system = connected();
    return system && describe(system->sources(), index, info);
}

bool MIDI::getOutputDevInfo(unsigned int index, MIDIDeviceInfo& info)
{
    const auto system = connected();
    return system && describe(system->destinations(), index, info);
}

LightweightString<char> MIDI::getServices()
{
    const auto system = connected();
    return system ? system->name() : "none";
}
