#pragma once

#include <OS/Devices/MIDICallbacks.h>

#include <cstddef>
#include <cstdint>

/// Takes packets apart into the messages that a receiver is called with. One thread at a time.
///
/// Deliberate, and relied on: every message of a packet is reported by the packet's first four
/// bytes; a system-exclusive message that is complete in one packet is reported as a short message,
/// while its bytes stay in the buffer, in front of the next one; and whatever comes in the midst of
/// a system-exclusive message is part of it.
class MidiPacketWalk
{
public:
    static constexpr std::size_t kBufferSize = 1024;
    /// Bytes of a system-exclusive message in its first packet.
    static constexpr std::size_t kFirstPiece = 256;

    MidiPacketWalk(unsigned int index, iMidiInputDevice* device, InputCallbackReceiver& receiver);

    /// Forgets what came so far.
    void clear();

    /// Walks what a source sent at once, cut where a system-exclusive message would be longer than
    /// in one packet, or longer than the room in the buffer: nothing of one that is reported as a
    /// long message is lost.
    void receive(const unsigned char* data, std::size_t length);

    /// Walks one packet. What the buffer has no room for is lost.
    void walk(const unsigned char* data, std::size_t length);

private:
    static std::size_t sizeByStatus(unsigned char status);
    static std::size_t sysexStart(const unsigned char* data, std::size_t length);
    std::size_t room() const { return kBufferSize - length_; }
    std::size_t cutAt(const unsigned char* data, std::size_t length);
    void append(const unsigned char* data, std::size_t length);
    void report(const unsigned char* data, std::size_t length);
    void deliver();

    const unsigned int index_;
    iMidiInputDevice* const device_;
    InputCallbackReceiver& receiver_;
    bool inSysex_ = false;
    unsigned char buffer_[kBufferSize];
    std::uint16_t length_ = 0;
};
