// Any bytes as what a source sends, chunked at every boundary: the walk stays within its buffer and
// reports what was sent, whatever the division; the sequencer's coding gives back whole messages
// only.
#include "OS/Host/Midi/AlsaEventCoding.h"
#include "OS/Mac/Devices/MidiPacketWalk.h"

#include <cstdint>
#include <cstdlib>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

class Receiver final : public InputCallbackReceiver
{
public:
    void handleShortMsg(unsigned int, iMidiInputDevice*, unsigned int) override { ++shorts_; }
    void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char* data,
                       unsigned int size) override
    {
        if (size == 0 || size > MidiPacketWalk::kBufferSize)
            std::abort();
        longs_.insert(longs_.end(), data, data + size);
    }
    std::size_t shorts_ = 0;
    Bytes longs_;
};

// The stream in two parts, cut at each place, after whatever an earlier message left behind.
void cutInTwo(const std::uint8_t* data, std::size_t size)
{
    for (std::size_t cut = 0; cut <= size; ++cut) {
        Receiver receiver;
        MidiPacketWalk walk(0, nullptr, receiver);
        walk.receive(data, cut);
        walk.receive(data + cut, size - cut);
        if (receiver.shorts_ > size || receiver.longs_.size() > size)
            std::abort();
    }
}

// In one system-exclusive message, nothing is lost or added however it is divided.
void asOneMessage(const std::uint8_t* data, std::size_t size)
{
    if (size < 2)
        return;
    const std::size_t piece = 1 + data[0] * 8u;
    Bytes message{0xF0};
    for (std::size_t i = 1; i < size; ++i)
        message.push_back(data[i] & 0x7F);
    message.push_back(0xF7);
    Receiver receiver;
    MidiPacketWalk walk(0, nullptr, receiver);
    for (std::size_t at = 0; at < message.size(); at += piece)
        walk.receive(message.data() + at, std::min(piece, message.size() - at));
    const bool isInOnePacket = message.size() <= std::min(piece, MidiPacketWalk::kFirstPiece);
    if (isInOnePacket ? receiver.shorts_ != 1 || !receiver.longs_.empty()
                      : receiver.shorts_ != 0 || receiver.longs_ != message)
        std::abort();
}

// Packets straight into the walk, whose sizes the stream itself chooses.
void asPackets(const std::uint8_t* data, std::size_t size)
{
    Receiver receiver;
    MidiPacketWalk walk(0, nullptr, receiver);
    while (size > 0) {
        const std::size_t length = std::min<std::size_t>(size - 1, data[0] * 16u);
        walk.walk(data + 1, length);
        data += 1 + length;
        size -= 1 + length;
    }
}

void throughTheSequencer(const std::uint8_t* data, std::size_t size)
{
    OSInternal::AlsaEncoder encoder;
    OSInternal::AlsaDecoder decoder;
    for (std::size_t at = 0; at < size; at += 4)
        encoder.encode({data + at, std::min<std::size_t>(4, size - at)},
                       [&](snd_seq_event_t& event) {
                           const auto bytes = decoder.decode(event);
                           if (!bytes.empty() && bytes.front() < 0x80)
                               std::abort();
                           return 0;
                       });
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size > 8192)
        return 0;
    if (size <= 512)
        cutInTwo(data, size);
    asOneMessage(data, size);
    asPackets(data, size);
    throughTheSequencer(data, size);
    return 0;
}
