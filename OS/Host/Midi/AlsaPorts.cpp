#include "OS/Host/Midi/AlsaPorts.h"

#include "OS/Host/Midi/AlsaReaderRoom.h"
#include "OS/Host/Midi/MidiRunLoop.h"

#include <poll.h>

namespace OSInternal {

namespace {

// The kernel keeps this many cells of 28 bytes for each reader; with its default a burst is lost.
constexpr std::size_t kInputPool = 2000;
constexpr std::size_t kInputBufferBytes = 128 * 1024;

// 31,250 baud, ten bits for a byte: an interface with a real cable takes no more, and its driver
// drops what its buffer does not hold.
constexpr std::chrono::microseconds kCableTimePerByte{320};
// For a reader that is a program: several times what it can take in that time.
constexpr std::chrono::milliseconds kPauseForPrograms{1};

} // namespace

AlsaInputPort::AlsaInputPort(std::unique_ptr<AlsaClient> client, MidiPacketSink& sink)
    : client_(std::move(client)), sink_(sink)
{
}

int AlsaInputPort::connect(const snd_seq_addr_t& source)
{
    snd_seq_t* handle = client_->handle();
    snd_seq_set_client_pool_input(handle, kInputPool);
    snd_seq_set_input_buffer_size(handle, kInputBufferBytes);
    const int port =
        snd_seq_create_simple_port(handle, "Input", SND_SEQ_PORT_CAP_WRITE,
                                   SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
    if (port < 0)
        return port;
    pollfd polled{-1, 0, 0};
    if (snd_seq_poll_descriptors(handle, &polled, 1, POLLIN) == 1)
        descriptor_ = polled.fd;
    return snd_seq_connect_from(handle, port, source.client, source.port);
}

void AlsaInputPort::deliver(const MidiRunLoop& loop)
{
    while (loop.isRunning()) {
        snd_seq_event_t* event = nullptr;
        const int status = snd_seq_event_input(client_->handle(), &event);
        if (status == -ENOSPC) // events were lost; those that follow are whole
            continue;
        if (status < 0)
            break;
        if (!event)
            continue;
        const auto bytes = decoder_.decode(*event);
        if (!bytes.empty())
            sink_.handlePacket(bytes.data(), bytes.size());
    }
}

AlsaOutputPort::~AlsaOutputPort()
{
    const std::lock_guard<std::mutex> lock(client_->lock());
    if (port_ >= 0)
        snd_seq_delete_simple_port(client_->handle(), port_);
}

int AlsaOutputPort::connect(const snd_seq_addr_t& destination)
{
    const std::lock_guard<std::mutex> lock(client_->lock());
    snd_seq_t* handle = client_->handle();
    port_ =
        snd_seq_create_simple_port(handle, "Output", SND_SEQ_PORT_CAP_READ,
                                   SND_SEQ_PORT_TYPE_MIDI_GENERIC | SND_SEQ_PORT_TYPE_APPLICATION);
    if (port_ < 0)
        return port_;
    destination_ = destination;
    pollfd polled{-1, 0, 0};
    if (snd_seq_poll_descriptors(handle, &polled, 1, POLLOUT) == 1)
        descriptor_ = polled.fd;
    snd_seq_port_info_t* info;
    snd_seq_port_info_alloca(&info);
    if (snd_seq_get_any_port_info(handle, destination.client, destination.port, info) >= 0)
        isHardware_ = snd_seq_port_info_get_type(info) & SND_SEQ_PORT_TYPE_HARDWARE;
    // Events name their destination, whose refusal comes back; the connection has the driver open
    // its device.
    return snd_seq_connect_to(handle, port_, destination.client, destination.port);
}

int AlsaOutputPort::sendEvent(snd_seq_event_t& event)
{
    snd_seq_ev_set_source(&event, static_cast<unsigned char>(port_));
    event.dest = destination_;
    snd_seq_ev_set_direct(&event);
    const std::size_t dataBytes = snd_seq_ev_is_variable(&event) ? event.data.ext.len : 0;
    if (!hasAlsaReaderRoom(descriptor_, destination_.client, dataBytes))
        return -EAGAIN;
    const int status = snd_seq_event_output_direct(client_->handle(), &event);
    if (status >= 0)
        return 0;
    return status == -ENOMEM || status == -ENOSPC ? -EAGAIN : status; // the reader's pool is full
}

int AlsaOutputPort::send(const unsigned char* bytes, std::size_t length, Kind kind)
{
    const std::lock_guard<std::mutex> lock(client_->lock());
    if (kind == ePiece) {
        snd_seq_event_t event = AlsaEncoder::piece({bytes, length});
        const int status = sendEvent(event);
        if (status == 0)
            nextPieceAt_ = std::chrono::steady_clock::now() +
                           (isHardware_ ? kCableTimePerByte * static_cast<int>(length)
                                        : std::chrono::microseconds(kPauseForPrograms));
        return status;
    }
    bool taken = false; // a packet of several events is not begun twice
    return encoder_.encode({bytes, length}, [&](snd_seq_event_t& event) {
        int status = sendEvent(event);
        for (int tries = 0; taken && status == -EAGAIN && tries < 100; ++tries) {
            poll(nullptr, 0, 1);
            status = sendEvent(event);
        }
        if (status == -EAGAIN && taken)
            return -EIO;
        taken = true;
        return status;
    });
}

} // namespace OSInternal
