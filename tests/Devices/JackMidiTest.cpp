// MIDI through a real JACK server, with another client of it as the other end.

#include "support/BackgroundThread.h"
#include "support/FakeMidi.h"
#include "support/JackServer.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <optional>

namespace {

using testing::Each;
using testing::ElementsAre;

iMIDI& midi()
{
    return *OS()->midi();
}

iMIDIDeviceInfo& info()
{
    return dynamic_cast<iMIDIDeviceInfo&>(midi());
}

// The number of the device with a name, once it is there.
unsigned int numberOf(const wchar_t* name, bool isInput)
{
    unsigned int found = 99;
    waitUntil([&] {
        MIDIDeviceInfo device;
        for (unsigned int i = 0;
             isInput ? info().getInputDevInfo(i, device) : info().getOutputDevInfo(i, device); ++i)
            if (device.name_ == name)
                found = i;
        return found != 99;
    });
    return found;
}

class JackMidi : public testing::Test
{
protected:
    void SetUp() override
    {
        midi().deinitialise();
        setenv("VANTOR_MIDI", "jack", 1);
        startServer();
        if (!server->isInstalled())
            GTEST_SKIP() << "no JACK server is installed here";
        ASSERT_TRUE(server->isUp());
        peer.emplace();
        ASSERT_TRUE(peer->isUp());
        ASSERT_EQ(info().getServices(), "JACK");
    }
    void TearDown() override
    {
        input = nullptr;
        output = nullptr;
        midi().deinitialise();
        peer.reset();
        server.reset();
        unsetenv("VANTOR_MIDI");
    }

    void startServer()
    {
        server.reset();
        server.emplace();
    }
    void openInput()
    {
        iMidiInputDevice* device = nullptr;
        ASSERT_EQ(midi().open(device, numberOf(L"peer:out", true), receiver), 1);
        input.reset(device);
        ASSERT_EQ(input->start(), 1);
    }
    void openOutput()
    {
        iMidiOutputDevice* device = nullptr;
        ASSERT_EQ(midi().open(device, numberOf(L"peer:in", false), ignored), 1);
        output.reset(device);
    }
    // What fits into one buffer.
    void sendLong(const MidiBytes& bytes, unsigned int length)
    {
        iMIDIHdr* header = midi().allocHeader(256);
        std::memcpy(header->getData(), bytes.data(), bytes.size());
        ASSERT_EQ(output->longMsg(header, length), 1);
    }
    bool gotLongBytes(std::size_t count)
    {
        return waitUntil([&] { return receiver.longBytes().size() >= count; });
    }

    std::optional<JackServer> server;
    std::optional<JackPeer> peer;
    MidiReceiver receiver;
    OutputCallbackReceiver ignored;
    std::unique_ptr<iMidiInputDevice> input;
    std::unique_ptr<iMidiOutputDevice> output;
};

MidiBytes part(const MidiBytes& bytes, std::size_t from, std::size_t size)
{
    const auto begin = bytes.begin() + static_cast<std::ptrdiff_t>(from);
    return {begin, begin + static_cast<std::ptrdiff_t>(std::min(size, bytes.size() - from))};
}

} // namespace

TEST_F(JackMidi, DevicesAppearAndVanishAndOurOwnPortsAreNone)
{
    EXPECT_EQ(midi().getNumInputDevs(), 1u);
    EXPECT_EQ(midi().getNumOutputDevs(), 1u);
    openInput();
    openOutput();
    EXPECT_EQ(midi().getNumInputDevs(), 1u);
    EXPECT_EQ(midi().getNumOutputDevs(), 1u);
    MIDIDeviceInfo device;
    EXPECT_TRUE(info().getInputDevInfo(0, device));
    EXPECT_TRUE(device.isVirtual_);
    {
        const JackPeer second("second");
        EXPECT_TRUE(waitUntil([] { return midi().getNumInputDevs() == 2; }));
    }
    peer.reset();
    EXPECT_TRUE(
        waitUntil([] { return midi().getNumInputDevs() + midi().getNumOutputDevs() == 0; }));
    EXPECT_EQ(outputOf([&] {
                  iMidiInputDevice* gone = nullptr;
                  EXPECT_EQ(midi().open(gone, 0, receiver), 0);
                  delete gone;
              }),
              "");
}

TEST_F(JackMidi, PacketsArriveAsTheyWereSent)
{
    openInput();
    for (const MidiBytes& packet : {MidiBytes{0x90, 0x3C, 0x64},
                                    {0x90, 0x3C, 0x64, 0x80, 0x3C, 0},
                                    {0xC0, 5},
                                    {0xF8},
                                    {0x3C, 0x64, 0x3E, 0x64}})
        peer->send(packet);
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() >= 7; }));
    EXPECT_THAT(receiver.shorts(), ElementsAre(0x643C90u, 0x80643C90u, 0x80643C90u, 0x05C0u, 0xF8u,
                                               0x643E643Cu, 0x643E643Cu));
    EXPECT_EQ(receiver.thread(), "CFRUNMIDI");
}

TEST_F(JackMidi, NoIncomingMessageIsLost)
{
    openInput();
    constexpr unsigned int kMessages = 20'000;
    for (unsigned int i = 0; i < kMessages; ++i)
        peer->send({0x90, static_cast<unsigned char>(i & 0x7F),
                    static_cast<unsigned char>(i / 128 & 0x7F)});
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() >= kMessages; }));
    const auto words = receiver.shorts();
    for (unsigned int i = 0; i < kMessages; ++i)
        ASSERT_EQ(words[i], 0x90u | (i & 0x7F) << 8 | (i / 128 & 0x7F) << 16) << i;
}

TEST_F(JackMidi, LongMessagesArriveWhole)
{
    openInput();
    std::size_t expectedBytes = 0;
    MidiBytes expected;
    std::size_t shorts = 0;
    for (const std::size_t size : {255u, 256u, 257u, 1024u, 1025u, 4096u, 32'000u}) {
        const MidiBytes message = sysexOf(size);
        peer->send(message);
        expected.insert(expected.end(), message.begin(), message.end());
        if (size <= 256)
            ++shorts; // complete in one packet: in the buffer until the next long one
    }
    const MidiBytes huge = sysexOf(100'000);
    for (std::size_t at = 0; at < huge.size(); at += 1000)
        peer->send(part(huge, at, 1000));
    expected.insert(expected.end(), huge.begin(), huge.end());
    expectedBytes = expected.size();
    ASSERT_TRUE(gotLongBytes(expectedBytes));
    EXPECT_EQ(receiver.longBytes(), expected);
    EXPECT_EQ(receiver.shorts().size(), shorts);
}

TEST_F(JackMidi, LongMessagesInPiecesKeepTheClockBytesBetweenThem)
{
    openInput();
    MidiBytes expected;
    for (const std::size_t size : {1u, 255u, 256u, 257u, 1024u, 1025u, 4096u, 100'000u}) {
        const MidiBytes message = sysexOf(size);
        for (std::size_t at = 0; at < size; at += 256) {
            peer->send(part(message, at, 256));
            expected.insert(expected.end(), message.begin() + static_cast<std::ptrdiff_t>(at),
                            message.begin() +
                                static_cast<std::ptrdiff_t>(std::min(at + 256, size)));
            if (at + 256 < size) {
                peer->send({0xF8});
                expected.push_back(0xF8);
            }
        }
    }
    ASSERT_TRUE(gotLongBytes(expected.size()));
    EXPECT_EQ(receiver.longBytes(), expected);
}

TEST_F(JackMidi, WhatIsSentBetweenOpeningAndClosingGetsThrough)
{
    for (unsigned int i = 0; i < 20; ++i) {
        openOutput();
        EXPECT_EQ(output->shortMsg(0x90 | i << 8), 1);
        EXPECT_EQ(output->close(), 1);
        EXPECT_EQ(peer->takeBytes(4), (MidiBytes{0x90, static_cast<unsigned char>(i), 0, 0}));
    }
}

TEST_F(JackMidi, NoOutgoingMessageIsLost)
{
    openOutput();
    constexpr unsigned int kMessages = 20'000;
    for (unsigned int i = 0; i < kMessages; ++i)
        ASSERT_EQ(output->shortMsg(0x90 | (i & 0x7F) << 8 | (i / 128 & 0x7F) << 16), 1);
    const MidiBytes bytes = peer->takeBytes(4 * kMessages);
    ASSERT_EQ(bytes.size(), 4 * kMessages);
    for (unsigned int i = 0; i < kMessages; ++i)
        ASSERT_EQ(bytes[4 * i + 1] | bytes[4 * i + 2] << 7, static_cast<int>(i & 0x3FFF)) << i;
}

TEST_F(JackMidi, OutgoingLongMessagesHaveTheirLength)
{
    openOutput();
    for (const unsigned int size : {1u, 255u, 256u, 257u, 1024u, 1025u, 4096u, 100'000u}) {
        const MidiBytes message = sysexOf(std::min(size, iMIDIHdr::kDataSize));
        sendLong(message, size);
        MidiBytes expected = message;
        expected.resize(size);
        EXPECT_EQ(peer->takeBytes(size), expected) << size;
    }
}

TEST_F(JackMidi, AnOutgoingMessageOfManyBuffersLetsTheClockThrough)
{
    openOutput();
    const MidiBytes message = sysexOf(100'000);
    for (std::size_t at = 0, count = 0; at < message.size(); at += 256, ++count) {
        const MidiBytes piece = part(message, at, 256);
        sendLong(piece, static_cast<unsigned int>(piece.size()));
        if (count % 8 == 0) {
            EXPECT_EQ(output->shortMsg(0xF8), 1);
        }
    }
    MidiBytes sysex;
    std::size_t clocks = 0;
    waitUntil([&] {
        for (const MidiBytes& event : peer->take())
            if (event == MidiBytes{0xF8, 0, 0, 0})
                ++clocks;
            else
                sysex.insert(sysex.end(), event.begin(), event.end());
        return sysex.size() >= message.size();
    });
    EXPECT_EQ(sysex, message);
    EXPECT_EQ(clocks, (100'000 / 256 + 1 + 7) / 8);
}

TEST_F(JackMidi, APeerThatVanishesHangsNothing)
{
    openInput();
    openOutput();
    for (int i = 0; i < 50; ++i)
        peer->send(sysexOf(4096));
    sendLong(sysexOf(200), 1'000'000);
    peer.reset();
    EXPECT_EQ(output->shortMsg(0xF8), 1);
    EXPECT_EQ(output->close(), 1);
    EXPECT_EQ(input->stop(), 1);
    EXPECT_EQ(input->close(), 1);
}

TEST_F(JackMidi, ADyingServerHangsNothingAndTheNextOneIsFound)
{
    for (const bool deletes : {false, true}) {
        openInput();
        openOutput();
        for (int i = 0; i < 100; ++i)
            peer->send(sysexOf(4096));
        sendLong(sysexOf(200), 1'000'000);
        sendLong(sysexOf(200), 200);
        server->kill();
        peer.reset(); // before anyone asks for a server again: see JackClient::close
        ASSERT_TRUE(
            waitUntil([] { return midi().getNumInputDevs() + midi().getNumOutputDevs() == 0; }));
        if (!deletes) {
            EXPECT_EQ(outputOf([&] { EXPECT_EQ(output->shortMsg(0xF8), 0); }),
                      "result -32\nassertion failed false at OS/Mac/MIDI line 27\n");
            EXPECT_EQ(output->close(), 1);
            EXPECT_EQ(input->stop(), 1);
            EXPECT_EQ(input->close(), 1);
        }
        input = nullptr;
        output = nullptr;
        startServer();
        ASSERT_TRUE(server->isUp());
        peer.emplace();
        EXPECT_TRUE(waitUntil([] { return midi().getNumInputDevs() == 1; }));
    }
    openInput();
    peer->send({0xF8});
    EXPECT_TRUE(
        waitUntil([&] { return !receiver.shorts().empty() && receiver.shorts().back() == 0xF8; }));
}

TEST_F(JackMidi, ClosingWhileTheServerDiesHangsNothing)
{
    openInput();
    openOutput();
    sendLong(sysexOf(200), 1'000'000);
    BackgroundThread killer([&] { server->kill(); });
    EXPECT_EQ(output->close(), 1);
    EXPECT_EQ(input->close(), 1);
    killer.join();
    peer.reset();
}
