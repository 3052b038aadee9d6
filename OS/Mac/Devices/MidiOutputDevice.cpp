#include "OS/Mac/Devices/MidiOutputDevice.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>

#include "OS/Mac/Devices/MIDI.h"
#include "OS/Mac/Devices/MIDIHdr.h"

#include <algorithm>
#include <cerrno>

namespace {

void finishRequest(OSInternal::MidiSysExRequest* request)
{
    OS()->midi()->freeHeader(static_cast<iMIDIHdr*>(request->reference_));
    delete request;
}

} // namespace

MidiOutputDevice::MidiOutputDevice(unsigned int index, OutputCallbackReceiver& receiver)
    : receiver_(&receiver), index_(index)
{
}

MidiOutputDevice::~MidiOutputDevice()
{
    endThread();
    closePort();
}

TqResult MidiOutputDevice::openPort()
{
    client_ = MIDI::client();
    if (!client_)
        return OStoTqErr(-ENOTCONN);
    const auto destinations = client_->destinations();
    if (index_ >= destinations.size())
        return 0;
    return OStoTqErr(client_->openOutput(destinations[index_], port_));
}

TqResult MidiOutputDevice::closePort()
{
    if (port_)
        client_->cancelSysEx(*port_);
    port_ = nullptr;
    return 1;
}

TqResult MidiOutputDevice::close()
{
    return executeCommand(eCloseOutput, true);
}

TqResult MidiOutputDevice::unprepareHeader(iMIDIHdr* header)
{
    if (header)
        static_cast<MIDIHdr*>(header)->setLength(MIDIHdr::kMaxLength);
    return 1;
}

TqResult MidiOutputDevice::shortMsg(unsigned int message)
{
    if (!port_)
        return OStoTqErr(-ENOTCONN);
    const unsigned char bytes[] = {
        static_cast<unsigned char>(message), static_cast<unsigned char>(message >> 8),
        static_cast<unsigned char>(message >> 16), static_cast<unsigned char>(message >> 24)};
    return OStoTqErr(client_->send(*port_, bytes, sizeof bytes));
}

TqResult MidiOutputDevice::longMsg(iMIDIHdr* header, unsigned int length)
{
    if (!header)
        return 0;
    static_cast<MIDIHdr*>(header)->setLength(
        static_cast<std::uint16_t>(std::min<unsigned int>(length, MIDIHdr::kMaxLength)));
    if (!port_)
        return OStoTqErr(-ENOTCONN);
    auto request = std::make_unique<OSInternal::MidiSysExRequest>();
    request->data_ = header->getData();
    request->dataSize_ = iMIDIHdr::kDataSize;
    request->bytesToSend_ = length; // not cut, deliberately
    request->completion_ = &finishRequest;
    request->reference_ = header;
    const int status = client_->sendSysEx(port_, request.get());
    if (status == 0)
        request.release(); // the completion's now
    return OStoTqErr(status);
}
