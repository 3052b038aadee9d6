#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <span>

#include <alsa/asoundlib.h>

namespace OSInternal {

struct AlsaCoderFree
{
    void operator()(snd_midi_event_t* coder) const { snd_midi_event_free(coder); }
};
using AlsaCoder = std::unique_ptr<snd_midi_event_t, AlsaCoderFree>;

/// Bytes into sequencer events. One thread at a time.
class AlsaEncoder
{
public:
    AlsaEncoder();

    /// Each event of a packet in turn. What a packet leaves unfinished is forgotten, but a
    /// system-exclusive start goes as it is. Deliberately, zeros behind a complete message are more
    /// messages where running status makes them so: C0 00 00 00 is three program changes.
    /// @param take its status other than 0 ends the packet and is returned; an event's data is
    ///             valid during the call
    int encode(std::span<const unsigned char> packet,
               const std::function<int(snd_seq_event_t&)>& take);

    /// A piece of a system-exclusive message, as an event that points to it.
    static snd_seq_event_t piece(std::span<const unsigned char> bytes);

private:
    AlsaCoder coder_;
};

/// Sequencer events into bytes. One thread at a time.
class AlsaDecoder
{
public:
    AlsaDecoder();

    /// @return the event's bytes, valid until the next call or as long as the event; empty for an
    ///         event that is no MIDI message
    std::span<const unsigned char> decode(const snd_seq_event_t& event);

private:
    AlsaCoder coder_;
    unsigned char bytes_[64];
};

} // namespace OSInternal
