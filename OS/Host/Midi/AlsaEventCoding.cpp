#include "OS/Host/Midi/AlsaEventCoding.h"

#include <new>

namespace OSInternal {

namespace {

constexpr std::size_t kEncoderBytes = 256;

AlsaCoder makeCoder()
{
    snd_midi_event_t* coder = nullptr;
    if (snd_midi_event_new(kEncoderBytes, &coder) < 0)
        throw std::bad_alloc();
    return AlsaCoder(coder);
}

} // namespace

AlsaEncoder::AlsaEncoder() : coder_(makeCoder()) {}

int AlsaEncoder::encode(std::span<const unsigned char> packet,
                        const std::function<int(snd_seq_event_t&)>& take)
{
    if (!packet.empty() && packet.front() == 0xF0) {
        snd_seq_event_t event = piece(packet);
        return take(event);
    }
    snd_midi_event_reset_encode(coder_.get());
    while (!packet.empty()) {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        const long used = snd_midi_event_encode(coder_.get(), packet.data(),
                                                static_cast<long>(packet.size()), &event);
        if (used <= 0)
            break;
        packet = packet.subspan(static_cast<std::size_t>(used));
        if (event.type == SND_SEQ_EVENT_NONE)
            continue;
        if (const int status = take(event))
            return status;
    }
    return 0;
}

snd_seq_event_t AlsaEncoder::piece(std::span<const unsigned char> bytes)
{
    snd_seq_event_t event;
    snd_seq_ev_clear(&event);
    snd_seq_ev_set_sysex(&event, static_cast<unsigned int>(bytes.size()),
                         const_cast<unsigned char*>(bytes.data()));
    return event;
}

AlsaDecoder::AlsaDecoder() : coder_(makeCoder())
{
    // Every message with its status: events are packets of their own.
    snd_midi_event_no_status(coder_.get(), 1);
}

std::span<const unsigned char> AlsaDecoder::decode(const snd_seq_event_t& event)
{
    if (event.type == SND_SEQ_EVENT_SYSEX)
        return {static_cast<const unsigned char*>(event.data.ext.ptr), event.data.ext.len};
    snd_midi_event_reset_decode(coder_.get());
    const long size = snd_midi_event_decode(coder_.get(), bytes_, sizeof bytes_, &event);
    return {bytes_, size > 0 ? static_cast<std::size_t>(size) : 0u};
}

} // namespace OSInternal
