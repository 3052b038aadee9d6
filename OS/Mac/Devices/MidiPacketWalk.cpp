#include "OS/Mac/Devices/MidiPacketWalk.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr unsigned char kStart = 0xF0;
constexpr unsigned char kEnd = 0xF7;

} // namespace

MidiPacketWalk::MidiPacketWalk(unsigned int index, iMidiInputDevice* device,
                               InputCallbackReceiver& receiver)
    : index_(index), device_(device), receiver_(receiver)
{
}

void MidiPacketWalk::clear()
{
    inSysex_ = false;
    length_ = 0;
}

// Of a message, by its first byte; 0 for the start of a system-exclusive one, which takes the rest.
// A byte that is no status counts like a note: deliberate.
std::size_t MidiPacketWalk::sizeByStatus(unsigned char status)
{
    if (status < 0xC0)
        return 3;
    if (status < 0xE0)
        return 2;
    if (status < kStart)
        return 3;
    switch (status) {
    case kStart:
        return 0;
    case 0xF1:
    case 0xF2:
        return 3;
    case 0xF3:
        return 2;
    default:
        return 1;
    }
}

// @return length when there is none
std::size_t MidiPacketWalk::sysexStart(const unsigned char* data, std::size_t length)
{
    std::size_t offset = 0;
    while (offset < length && data[offset] != kStart)
        offset += sizeByStatus(data[offset]);
    return std::min(offset, length);
}

void MidiPacketWalk::receive(const unsigned char* data, std::size_t length)
{
    do {
        const std::size_t part = cutAt(data, length);
        walk(data, part);
        data += part;
        length -= part;
    } while (length > 0);
}

// How much of what came makes the next packet.
std::size_t MidiPacketWalk::cutAt(const unsigned char* data, std::size_t length)
{
    if (length == 0)
        return 0;
    if (inSysex_) {
        if (room() == 0)
            deliver();
        return std::min(length, room());
    }
    const std::size_t start = sysexStart(data, length);
    const std::size_t rest = length - start;
    if (rest == 0 || (rest <= kFirstPiece && data[length - 1] == kEnd))
        return length;
    if (room() == 0)
        deliver();
    return start + std::min({rest, kFirstPiece, room()});
}

void MidiPacketWalk::walk(const unsigned char* data, std::size_t length)
{
    if (length == 0)
        return;
    const bool ends = data[length - 1] == kEnd;
    if (inSysex_) {
        append(data, length);
        inSysex_ = !ends;
        if (length_ == kBufferSize || ends)
            deliver();
        return;
    }
    for (std::size_t offset = 0; offset < length;) {
        std::size_t size = sizeByStatus(data[offset]);
        if (data[offset] == kStart) {
            append(data + offset, length - offset);
            inSysex_ = !ends;
            offset = length;
        }
        if (!inSysex_)
            report(data, length);
        offset += size;
    }
}

void MidiPacketWalk::append(const unsigned char* data, std::size_t length)
{
    const std::size_t count = std::min(length, room());
    std::memcpy(buffer_ + length_, data, count);
    length_ = static_cast<std::uint16_t>(length_ + count);
}

void MidiPacketWalk::report(const unsigned char* data, std::size_t length)
{
    std::uint32_t message = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(length, 4); ++i)
        message |= static_cast<std::uint32_t>(data[i]) << (8 * i);
    receiver_.handleShortMsg(index_, device_, message);
}

void MidiPacketWalk::deliver()
{
    receiver_.handleLongMsg(index_, device_, buffer_, length_);
    length_ = 0;
}
