#include "OS/Host/Midi/JackPorts.h"

#include "OS/Host/Midi/MidiRunLoop.h"

#include <cerrno>

namespace OSInternal {

namespace {

constexpr std::size_t kInputRingBytes = 512 * 1024;
constexpr std::size_t kOutputRingBytes = 64 * 1024;

// Some servers drop a cycle whole that is filled to the brim.
constexpr std::size_t kCycleBytes = 4096;

} // namespace

JackInputPort::JackInputPort(std::shared_ptr<JackClient> client, MidiPacketSink& sink)
    : client_(std::move(client)), sink_(sink), ring_(kInputRingBytes)
{
}

JackInputPort::~JackInputPort()
{
    if (slot_ >= 0)
        client_->removePort(slot_);
}

int JackInputPort::connect(const std::string& source)
{
    return client_->addPort("Input", JackPortIsOutput, source, *this, slot_);
}

void JackInputPort::process(jack_port_t* port, jack_nframes_t frames)
{
    const JackLibrary& jack = client_->library();
    void* buffer = jack.port_get_buffer(port, frames);
    const std::uint32_t count = jack.midi_get_event_count(buffer);
    for (std::uint32_t i = 0; i < count; ++i) {
        jack_midi_event_t event;
        if (jack.midi_event_get(&event, buffer, i) == 0)
            ring_.push(event.buffer, static_cast<std::uint32_t>(event.size));
    }
    if (count > 0)
        ready_.signal();
}

void JackInputPort::deliver(const MidiRunLoop& loop)
{
    ready_.clear();
    std::uint32_t length = 0;
    while (ring_.peek(length)) {
        if (!loop.isRunning()) {
            ready_.signal(); // for the next time
            break;
        }
        packet_.resize(length);
        ring_.pop(packet_.data(), length);
        sink_.handlePacket(packet_.data(), length);
    }
}

JackOutputPort::JackOutputPort(std::shared_ptr<JackClient> client)
    : client_(std::move(client)), ring_(kOutputRingBytes)
{
}

JackOutputPort::~JackOutputPort()
{
    if (slot_ < 0)
        return;
    // What was sent before closing is still to go out: through the ring, then through the cycle in
    // which the destination reads it.
    for (int turns = 0; ring_.used() > 0 && client_->isAlive() && turns < 32; ++turns)
        client_->waitCycles(1);
    client_->waitCycles(2);
    client_->removePort(slot_);
}

int JackOutputPort::connect(const std::string& destination)
{
    return client_->addPort("Output", JackPortIsInput, destination, *this, slot_);
}

int JackOutputPort::send(const unsigned char* bytes, std::size_t length, Kind kind)
{
    const std::lock_guard<std::mutex> lock(pushing_);
    if (!client_->isAlive())
        return -EPIPE;
    // Pieces leave room, so that a short message that overtakes them waits for one cycle only.
    if (kind == ePiece && ring_.used() + length > kCycleBytes)
        return -EAGAIN;
    return ring_.push(bytes, static_cast<std::uint32_t>(length)) ? 0 : -EAGAIN;
}

void JackOutputPort::process(jack_port_t* port, jack_nframes_t frames)
{
    const JackLibrary& jack = client_->library();
    void* buffer = jack.port_get_buffer(port, frames);
    jack.midi_clear_buffer(buffer);
    std::size_t left = kCycleBytes;
    std::uint32_t length = 0;
    while (ring_.peek(length) && length <= left) {
        jack_midi_data_t* event = jack.midi_event_reserve(buffer, 0, length);
        if (!event)
            break;
        ring_.pop(event, length);
        left -= length;
    }
}

} // namespace OSInternal
