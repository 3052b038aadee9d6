#include "OS/Mac/Devices/MidiInputDevice.h"

#include "OS/Mac/Devices/MIDI.h"

#include <cerrno>

MidiInputDevice::MidiInputDevice(unsigned int index, InputCallbackReceiver& receiver)
    : index_(index), walk_(index, this, receiver)
{
}

MidiInputDevice::~MidiInputDevice()
{
    endThread();
}

TqResult MidiInputDevice::openPort()
{
    walk_.clear();
    const auto client = MIDI::client();
    if (!client)
        return OStoTqErr(-ENOTCONN);
    const auto sources = client->sources();
    if (index_ >= sources.size())
        return 0;
    return OStoTqErr(client->openInput(sources[index_], *this, port_));
}

TqResult MidiInputDevice::closePort()
{
    port_ = nullptr;
    return 1;
}

TqResult MidiInputDevice::close()
{
    stop(); // no command is taken while the run loop runs
    return executeCommand(eCloseInput, true);
}

TqResult MidiInputDevice::start()
{
    runLoop_.start();
    return executeCommand(eRun, false);
}

TqResult MidiInputDevice::stop()
{
    runLoop_.stop();
    return 1;
}

void MidiInputDevice::handlePacket(const unsigned char* data, std::size_t length)
{
    walk_.receive(data, length);
}
