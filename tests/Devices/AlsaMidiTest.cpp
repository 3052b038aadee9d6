// MIDI through the kernel's sequencer, with another client of it, and with the far side of virtual
// cards, as the other end. Skipped where the kernel has none; a small virtual machine has: ctest -C
// Matrix -L vm.

#include "support/BackgroundThread.h"
#include "support/FakeMidi.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>

#include <alsa/asoundlib.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

iMIDI& midi()
{
    return *OS()->midi();
}

iMIDIDeviceInfo& info()
{
    return dynamic_cast<iMIDIDeviceInfo&>(midi());
}

std::vector<std::wstring> names(bool ofInputs)
{
    std::vector<std::wstring> result;
    MIDIDeviceInfo device;
    for (unsigned int i = 0;
         ofInputs ? info().getInputDevInfo(i, device) : info().getOutputDevInfo(i, device); ++i)
        result.emplace_back(device.name_.view());
    return result;
}

unsigned int numberOf(const std::wstring& name, bool isInput)
{
    const auto all = names(isInput);
    return static_cast<unsigned int>(std::find(all.begin(), all.end(), name) - all.begin());
}

// Another program at the sequencer, with one port for both directions.
class AlsaPeer
{
public:
    explicit AlsaPeer(const char* name = "peer")
    {
        if (snd_seq_open(&handle_, "default", SND_SEQ_OPEN_DUPLEX, SND_SEQ_NONBLOCK) < 0)
            return;
        snd_seq_set_client_name(handle_, name);
        port_ = snd_seq_create_simple_port(handle_, "port",
                                           SND_SEQ_PORT_CAP_READ | SND_SEQ_PORT_CAP_SUBS_READ |
                                               SND_SEQ_PORT_CAP_WRITE | SND_SEQ_PORT_CAP_SUBS_WRITE,
                                           SND_SEQ_PORT_TYPE_APPLICATION);
    }
    AlsaPeer(const AlsaPeer&) = delete;
    AlsaPeer& operator=(const AlsaPeer&) = delete;
    ~AlsaPeer() { snd_seq_close(handle_); }

    // A piece of a system-exclusive message, once the reader has room.
    void send(const MidiBytes& piece)
    {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        snd_seq_ev_set_sysex(&event, static_cast<unsigned int>(piece.size()),
                             const_cast<unsigned char*>(piece.data()));
        sendEvent(event);
    }
    void sendNote(unsigned char note, unsigned char velocity)
    {
        snd_seq_event_t event;
        snd_seq_ev_clear(&event);
        snd_seq_ev_set_noteon(&event, 0, note, velocity);
        sendEvent(event);
    }
    // Waits until what is not read fills the room that the kernel has for it.
    bool waitUntilFull() const
    {
        snd_seq_client_pool_t* pool;
        snd_seq_client_pool_alloca(&pool);
        return waitUntil([&] {
            return snd_seq_get_client_pool(handle_, pool) == 0 &&
                   snd_seq_client_pool_get_input_free(pool) < 12;
        });
    }
    // Waits until so many bytes have come.
    MidiBytes takeBytes(std::size_t count)
    {
        snd_midi_event_t* coder = nullptr;
        snd_midi_event_new(64, &coder);
        snd_midi_event_no_status(coder, 1);
        MidiBytes all;
        waitUntil([&] {
            snd_seq_event_t* event = nullptr;
            while (snd_seq_event_input(handle_, &event) >= 0) {
                unsigned char bytes[64];
                if (event->type == SND_SEQ_EVENT_SYSEX) {
                    const auto* data = static_cast<const unsigned char*>(event->data.ext.ptr);
                    all.insert(all.end(), data, data + event->data.ext.len);
                } else if (const long size =
                               snd_midi_event_decode(coder, bytes, sizeof bytes, event);
                           size > 0)
                    all.insert(all.end(), bytes, bytes + size);
            }
            return all.size() >= count;
        });
        snd_midi_event_free(coder);
        return all;
    }

private:
    void sendEvent(snd_seq_event_t& event)
    {
        snd_seq_ev_set_source(&event, static_cast<unsigned char>(port_));
        snd_seq_ev_set_subs(&event);
        snd_seq_ev_set_direct(&event);
        waitUntil([&] { return snd_seq_event_output_direct(handle_, &event) >= 0; });
    }

    snd_seq_t* handle_ = nullptr;
    int port_ = -1;
};

// The far side of a virtual card: what a cable would carry.
class CardCable
{
public:
    CardCable() : descriptor_(open("/dev/snd/midiC0D0", O_RDWR | O_NONBLOCK)) {}
    CardCable(const CardCable&) = delete;
    CardCable& operator=(const CardCable&) = delete;
    ~CardCable()
    {
        if (descriptor_ >= 0)
            close(descriptor_);
    }

    bool isThere() const { return descriptor_ >= 0; }
    void send(const MidiBytes& bytes)
    {
        std::size_t sent = 0;
        waitUntil([&] {
            const ssize_t count = write(descriptor_, bytes.data() + sent, bytes.size() - sent);
            sent += count > 0 ? static_cast<std::size_t>(count) : 0;
            return sent == bytes.size();
        });
    }
    MidiBytes takeBytes(std::size_t count)
    {
        MidiBytes all;
        waitUntil([&] {
            unsigned char bytes[4096];
            for (ssize_t got; (got = read(descriptor_, bytes, sizeof bytes)) > 0;)
                all.insert(all.end(), bytes, bytes + got);
            return all.size() >= count;
        });
        return all;
    }

private:
    int descriptor_;
};

class AlsaMidi : public testing::Test
{
protected:
    void SetUp() override
    {
        if (access("/dev/snd/seq", R_OK | W_OK) != 0)
            GTEST_SKIP() << "no sequencer here";
        midi().deinitialise();
        setenv("VANTOR_MIDI", "alsa", 1);
        ASSERT_EQ(info().getServices(), "ALSA");
        peer.emplace();
    }
    void TearDown() override
    {
        input = nullptr;
        output = nullptr;
        midi().deinitialise();
        unsetenv("VANTOR_MIDI");
    }

    void openInput(const std::wstring& name = L"peer: port")
    {
        iMidiInputDevice* device = nullptr;
        ASSERT_EQ(midi().open(device, numberOf(name, true), receiver), 1);
        input.reset(device);
        ASSERT_EQ(input->start(), 1);
    }
    void openOutput(const std::wstring& name = L"peer: port")
    {
        iMidiOutputDevice* device = nullptr;
        ASSERT_EQ(midi().open(device, numberOf(name, false), ignored), 1);
        output.reset(device);
    }
    void sendLong(const MidiBytes& bytes, unsigned int length)
    {
        iMIDIHdr* header = midi().allocHeader(256);
        std::memcpy(header->getData(), bytes.data(), bytes.size());
        ASSERT_EQ(output->longMsg(header, length), 1);
    }

    std::optional<AlsaPeer> peer;
    MidiReceiver receiver;
    OutputCallbackReceiver ignored;
    std::unique_ptr<iMidiInputDevice> input;
    std::unique_ptr<iMidiOutputDevice> output;
};

const std::wstring kCard = L"Virtual Raw MIDI 0-0: VirMIDI 0-0";

} // namespace

TEST_F(AlsaMidi, DevicesAppearAndVanishAndOurOwnPortsAreNone)
{
    const unsigned int inputs = midi().getNumInputDevs();
    const unsigned int outputs = midi().getNumOutputDevs();
    openInput();
    openOutput();
    EXPECT_EQ(midi().getNumInputDevs(), inputs);
    EXPECT_EQ(midi().getNumOutputDevs(), outputs);
    for (const bool ofInputs : {true, false})
        for (const std::wstring& each : names(ofInputs))
            EXPECT_EQ(each.find(L"System"), each.npos) << "the sequencer itself is no device";
    {
        const AlsaPeer second("second");
        EXPECT_EQ(midi().getNumInputDevs(), inputs + 1);
        EXPECT_LT(numberOf(L"second: port", false), outputs + 1);
    }
    peer.reset();
    EXPECT_EQ(midi().getNumInputDevs(), inputs - 1);
    EXPECT_EQ(midi().getNumOutputDevs(), outputs - 1);
}

TEST_F(AlsaMidi, TheVirtualCardsOfThisMachineAreListed)
{
    if (!CardCable().isThere())
        GTEST_SKIP() << "no virtual cards here";
    for (const bool ofInputs : {true, false}) {
        const auto all = names(ofInputs);
        for (const wchar_t* each :
             {L"Midi Through Port-0", kCard.c_str(), L"Virtual Raw MIDI 0-1: VirMIDI 0-1"})
            EXPECT_THAT(all, testing::Contains(each));
    }
    MIDIDeviceInfo device;
    ASSERT_TRUE(info().getInputDevInfo(numberOf(kCard, true), device));
    EXPECT_TRUE(device.isVirtual_);
    EXPECT_TRUE(device.manufacturer_.empty());
}

TEST_F(AlsaMidi, TheCablesBytesArriveAsMessages)
{
    CardCable cable;
    if (!cable.isThere())
        GTEST_SKIP() << "no virtual cards here";
    openInput(kCard);
    cable.send({0x90, 0x3C, 0x64, 0x3D, 0x64, 0xC0, 5, 0xF8}); // the second note by running status
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() >= 4; }));
    EXPECT_THAT(receiver.shorts(), ElementsAre(0x643C90u, 0x643D90u, 0x05C0u, 0xF8u));
    EXPECT_EQ(receiver.thread(), "CFRUNMIDI");
    MidiBytes expected;
    for (const std::size_t size : {257u, 1024u, 1025u, 4096u, 100'000u}) {
        const MidiBytes message = sysexOf(size);
        cable.send(message);
        expected.insert(expected.end(), message.begin(), message.end());
        EXPECT_TRUE(waitUntil([&] { return receiver.longBytes().size() >= expected.size(); }))
            << size;
    }
    EXPECT_EQ(receiver.longBytes(), expected);
}

TEST_F(AlsaMidi, MessagesReachTheCable)
{
    CardCable cable;
    if (!cable.isThere())
        GTEST_SKIP() << "no virtual cards here";
    openOutput(kCard);
    cable.takeBytes(0); // the card listens from its first reading on
    EXPECT_EQ(output->shortMsg(0x643C90), 1);
    EXPECT_EQ(cable.takeBytes(3), (MidiBytes{0x90, 0x3C, 0x64}));
    EXPECT_EQ(output->shortMsg(0xC0), 1);
    EXPECT_EQ(cable.takeBytes(4), (MidiBytes{0xC0, 0, 0, 0})) << "three changes by running status";
    for (const unsigned int size : {1u, 255u, 256u, 257u, 1024u, 1025u, 4096u, 20'000u}) {
        const MidiBytes message = sysexOf(std::min(size, iMIDIHdr::kDataSize));
        sendLong(message, size);
        MidiBytes expected = message;
        expected.resize(size);
        EXPECT_EQ(cable.takeBytes(size), expected) << size;
    }
}

TEST_F(AlsaMidi, NoIncomingMessageIsLost)
{
    openInput();
    // A reader that is overrun loses all that waits, so the sender stays within its room.
    constexpr unsigned int kMessages = 10'000;
    for (unsigned int i = 0; i < kMessages; ++i) {
        peer->sendNote(static_cast<unsigned char>(i & 0x7F),
                       static_cast<unsigned char>(1 + i / 128 % 127));
        if (i % 500 == 0)
            waitUntil([&] { return receiver.shorts().size() + 500 >= i; });
    }
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() >= kMessages; }));
    const auto words = receiver.shorts();
    for (unsigned int i = 0; i < kMessages; ++i)
        ASSERT_EQ(words[i], 0x90u | (i & 0x7F) << 8 | (1 + i / 128 % 127) << 16) << i;
    const MidiBytes message = sysexOf(100'000);
    for (std::size_t at = 0; at < message.size(); at += 250) {
        const std::size_t end = std::min(at + 250, message.size());
        peer->send({message.begin() + static_cast<std::ptrdiff_t>(at),
                    message.begin() + static_cast<std::ptrdiff_t>(end)});
        waitUntil([&] { return receiver.longBytes().size() + 20'000 >= at; });
    }
    ASSERT_TRUE(waitUntil([&] { return receiver.longBytes().size() >= message.size(); }));
    EXPECT_EQ(receiver.longBytes(), message);
}

TEST_F(AlsaMidi, NoOutgoingMessageIsLostByASlowReaderWithTheUsualRoom)
{
    openOutput();
    const MidiBytes message = sysexOf(100'000);
    for (std::size_t at = 0; at < message.size(); at += 256) {
        const std::size_t end = std::min(at + 256, message.size());
        sendLong({message.begin() + static_cast<std::ptrdiff_t>(at),
                  message.begin() + static_cast<std::ptrdiff_t>(end)},
                 static_cast<unsigned int>(end - at));
    }
    EXPECT_EQ(output->shortMsg(0x643C90), 1);
    ASSERT_TRUE(peer->waitUntilFull()) << "and only then begins to read";
    MidiBytes expected = message;
    expected.insert(expected.end(), {0x90, 0x3C, 0x64}); // behind it
    EXPECT_EQ(peer->takeBytes(expected.size()), expected);
}

TEST_F(AlsaMidi, WhatIsSentBeforeClosingGetsThrough)
{
    for (unsigned char i = 0; i < 20; ++i) {
        openOutput();
        EXPECT_EQ(output->shortMsg(0x010090u | unsigned{i} << 8), 1);
        EXPECT_EQ(output->close(), 1);
        EXPECT_EQ(peer->takeBytes(3), (MidiBytes{0x90, i, 1}));
    }
}

TEST_F(AlsaMidi, APeerThatReadsNothingHangsNoClosing)
{
    openOutput();
    sendLong(sysexOf(200), 1'000'000);
    EXPECT_EQ(output->close(), 1);
}

TEST_F(AlsaMidi, APeerThatVanishesHangsNothing)
{
    openInput();
    openOutput();
    for (int i = 0; i < 20; ++i)
        peer->send(sysexOf(200));
    sendLong(sysexOf(200), 1'000'000);
    peer.reset();
    EXPECT_THAT(outputOf([&] { EXPECT_EQ(output->shortMsg(0xF8), 0); }),
                testing::HasSubstr("assertion failed"));
    EXPECT_EQ(output->close(), 1);
    EXPECT_EQ(input->stop(), 1);
    EXPECT_EQ(input->close(), 1);
}
