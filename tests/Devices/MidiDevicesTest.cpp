#include "OS/Mac/Devices/MIDI.h"
#include "support/BackgroundThread.h"
#include "support/FakeMidi.h"
#include "support/OutputCapture.h"

#include <OS.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>

// The application's own records.
struct MIDIInCaps
{
    int untouched_;
};
struct MIDIOutCaps
{
    int untouched_;
};

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using Kind = OSInternal::MidiOutputPort::Kind;

constexpr char kRefused[] = "assertion failed false at OS/Mac/MIDI line 27\n";

// The process's connection, by fake services, for the time of a test.
class MidiDevices : public testing::Test
{
protected:
    void SetUp() override { OS()->midi()->deinitialise(); }
    void TearDown() override { midi.deinitialise(); }

    std::unique_ptr<iMidiInputDevice> openInput(TqResult expected = 1, unsigned int index = 0)
    {
        midi.initialise();
        iMidiInputDevice* device = nullptr;
        EXPECT_EQ(midi.open(device, index, receiver), expected);
        EXPECT_NE(device, nullptr);
        return std::unique_ptr<iMidiInputDevice>(device);
    }
    std::unique_ptr<iMidiOutputDevice> openOutput(TqResult expected = 1, unsigned int index = 0)
    {
        midi.initialise();
        iMidiOutputDevice* device = nullptr;
        EXPECT_EQ(midi.open(device, index, ignored), expected);
        EXPECT_NE(device, nullptr);
        return std::unique_ptr<iMidiOutputDevice>(device);
    }
    iMIDIHdr* headerOf(const MidiBytes& bytes)
    {
        iMIDIHdr* header = midi.allocHeader(256);
        std::memcpy(header->getData(), bytes.data(),
                    std::min<std::size_t>(bytes.size(), iMIDIHdr::kDataSize));
        return header;
    }

    std::shared_ptr<FakeMidiWire> wire = std::make_shared<FakeMidiWire>();
    int connections = 0;
    MIDI midi{[this] {
        ++connections;
        return std::make_shared<FakeMidiSystem>(wire, 2u);
    }};
    MidiReceiver receiver;
    OutputCallbackReceiver ignored;
};

int threadsNamed(const std::string& name)
{
    int count = 0;
    for (const auto& task : std::filesystem::directory_iterator("/proc/self/task")) {
        std::ifstream file(task.path() / "comm");
        std::string line;
        std::getline(file, line);
        count += line == name;
    }
    return count;
}

} // namespace

TEST_F(MidiDevices, CountingConnectsOnceUntilTheConnectionEnds)
{
    EXPECT_EQ(midi.getNumInputDevs(), 2u);
    EXPECT_EQ(midi.getNumOutputDevs(), 2u);
    EXPECT_EQ(midi.initialise(), 1);
    EXPECT_EQ(connections, 1);
    midi.deinitialise();
    midi.deinitialise();
    EXPECT_EQ(midi.initialise(), 1);
    EXPECT_EQ(connections, 2);
}

TEST_F(MidiDevices, ManyThreadsConnectOnce)
{
    BackgroundThreads threads(4, [&] { EXPECT_EQ(midi.getNumInputDevs(), 2u); });
    threads.join();
    EXPECT_EQ(connections, 1);
}

TEST_F(MidiDevices, TellTheirNames)
{
    iMIDIDeviceInfo* info = dynamic_cast<iMIDIDeviceInfo*>(static_cast<iMIDI*>(&midi));
    ASSERT_TRUE(info);
    MIDIDeviceInfo device;
    ASSERT_TRUE(info->getInputDevInfo(0, device));
    EXPECT_EQ(device.name_, L"Source 1");
    EXPECT_EQ(device.manufacturer_, L"Maker \u00E9");
    EXPECT_FALSE(device.isVirtual_);
    ASSERT_TRUE(info->getOutputDevInfo(1, device));
    EXPECT_EQ(device.name_, L"Destination 2");
    EXPECT_TRUE(device.isVirtual_);
    EXPECT_FALSE(info->getOutputDevInfo(2, device));
    EXPECT_EQ(info->getServices(), "fake");
}

TEST_F(MidiDevices, AMissingDeviceIsHandedOutWithoutAMessage)
{
    EXPECT_EQ(outputOf([&] {
                  auto input = openInput(0, 2);
                  EXPECT_EQ(input->close(), 1);
                  auto output = openOutput(0, 7);
                  EXPECT_EQ(output->close(), 1);
              }),
              "");
}

TEST_F(MidiDevices, ARefusedOpeningIsReported)
{
    wire->openStatus_ = -EBUSY;
    EXPECT_EQ(outputOf([&] { openInput(0); }), std::string("result -16\n") + kRefused);
    EXPECT_EQ(outputOf([&] { openOutput(0); }), std::string("result -16\n") + kRefused);
}

TEST_F(MidiDevices, UseBeforeOpeningOrAfterClosingIsRefused)
{
    const auto output = openOutput();
    EXPECT_EQ(output->close(), 1);
    EXPECT_EQ(output->close(), 1);
    iMIDIHdr* header = headerOf({0xF0, 0xF7});
    EXPECT_THAT(outputOf([&] {
                    EXPECT_EQ(output->shortMsg(0x90), 0);
                    EXPECT_EQ(output->longMsg(header, 2), 0);
                    EXPECT_EQ(output->longMsg(nullptr, 2), 0);
                }),
                HasSubstr(kRefused));
    midi.freeHeader(header); // still the caller's
    midi.freeHeader(nullptr);
}

TEST_F(MidiDevices, DeliverOnTheirOwnThreadWhileStarted)
{
    const auto input = openInput(1, 1);
    wire->arrive({0x90, 0x3C, 0x64}); // kept for the start
    EXPECT_EQ(input->start(), 1);
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() == 1; }));
    EXPECT_EQ(receiver.thread(), "CFRUNMIDI");
    EXPECT_EQ(receiver.index(), 1u);
    EXPECT_EQ(receiver.device(), input.get());
    EXPECT_EQ(input->stop(), 1);
    EXPECT_EQ(input->close(), 1);
    EXPECT_EQ(wire->inputPorts_, 0);
}

TEST_F(MidiDevices, RememberAStopThatComesBeforeTheRunLoop)
{
    const auto input = openInput();
    for (int i = 0; i < 200; ++i) {
        EXPECT_EQ(input->start(), 1);
        EXPECT_EQ(input->stop(), 1);
    }
    EXPECT_EQ(input->close(), 1) << "hangs where a stop is lost";
}

TEST_F(MidiDevices, AStopOfADeviceThatIsNotStartedEndsNoLaterRun)
{
    const auto input = openInput();
    input->stop();
    input->start();
    wire->arrive({0xF8});
    EXPECT_TRUE(waitUntil([&] { return receiver.shorts().size() == 1; }));
}

TEST_F(MidiDevices, CloseWaitsForItsOwnCommandAndNotForAnEarlierOne)
{
    for (int i = 0; i < 200; ++i) {
        const auto input = openInput();
        input->start();
        input->stop();
        EXPECT_EQ(input->close(), 1);
        const std::lock_guard<std::mutex> lock(wire->lock_);
        ASSERT_EQ(wire->inputPorts_, 0) << "closed before the thread had done it";
    }
}

TEST_F(MidiDevices, ADeviceThatRunsCanBeClosedAndDeleted)
{
    auto input = openInput();
    input->start();
    wire->arrive({0xF8});
    ASSERT_TRUE(waitUntil([&] { return receiver.shorts().size() == 1; }));
    EXPECT_EQ(input->close(), 1);
    input = openInput();
    input->start();
    input = nullptr;
    EXPECT_EQ(wire->inputPorts_, 0);
    EXPECT_EQ(threadsNamed("CFRUNMIDI"), 0);
}

TEST_F(MidiDevices, ShortMessagesAreAlwaysFourBytes)
{
    const auto output = openOutput();
    EXPECT_EQ(output->shortMsg(0x643C90), 1);
    EXPECT_EQ(output->shortMsg(0xC0), 1);
    EXPECT_THAT(wire->sent(),
                ElementsAre(MidiBytes{0x90, 0x3C, 0x64, 0}, MidiBytes{0xC0, 0, 0, 0}));
    wire->setSendStatus(-EPIPE);
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(output->shortMsg(0xF8), 0); }),
              std::string("result -32\n") + kRefused);
}

TEST_F(MidiDevices, HeadersKeepTheirRoomWhateverTheirLength)
{
    iMIDIHdr* header = midi.allocHeader(60000);
    EXPECT_EQ(header->getBytesRecorded(), 60000u);
    EXPECT_EQ(header->getFlags(), 0u);
    header->getData()[iMIDIHdr::kDataSize - 1] = 1;
    const auto output = openOutput();
    EXPECT_EQ(output->unprepareHeader(header), 1);
    EXPECT_EQ(header->getBytesRecorded(), 256u);
    wire->setSendStatus(-EAGAIN); // it lives while it is being sent
    EXPECT_EQ(output->longMsg(header, 300), 1);
    EXPECT_EQ(header->getBytesRecorded(), 256u);
    output->close();
}

TEST_F(MidiDevices, LongMessagesGoOutInPiecesAndNeverReadBehindTheBuffer)
{
    for (const unsigned int length :
         {0u, 1u, 255u, 256u, 257u, 262u, 263u, 300u, 1025u, 100'000u}) {
        wire->sent_.clear();
        const auto output = openOutput();
        const MidiBytes message = sysexOf(iMIDIHdr::kDataSize);
        EXPECT_EQ(output->longMsg(headerOf(message), length), 1);
        MidiBytes expected = message;
        expected.resize(length); // zeros behind the buffer
        EXPECT_TRUE(waitUntil([&] { return wire->sentBytes().size() >= length; })) << length;
        EXPECT_EQ(wire->sentBytes(), expected) << length;
        for (const MidiBytes& each : wire->sent())
            EXPECT_LE(each.size(), 256u);
    }
    EXPECT_EQ(threadsNamed("MIDISysEx"), 1);
    midi.deinitialise();
    EXPECT_EQ(threadsNamed("MIDISysEx"), 0);
}

TEST_F(MidiDevices, OnlyRealTimeMessagesOvertakeALongOne)
{
    const auto output = openOutput();
    wire->setSendStatus(-EAGAIN);
    EXPECT_EQ(output->longMsg(headerOf(sysexOf(4)), 4), 1);
    EXPECT_EQ(output->shortMsg(0x643C90), 1);
    EXPECT_EQ(output->longMsg(headerOf(sysexOf(3)), 3), 1);
    wire->setSendStatus(0);
    ASSERT_TRUE(waitUntil([&] { return wire->sent().size() == 3; }));
    EXPECT_THAT(wire->sent(), ElementsAre(sysexOf(4), MidiBytes{0x90, 0x3C, 0x64, 0}, sysexOf(3)));
    EXPECT_THAT(wire->kinds_, ElementsAre(Kind::ePiece, Kind::eWhole, Kind::ePiece));

    wire->setSendStatus(-EAGAIN);
    EXPECT_EQ(output->longMsg(headerOf(sysexOf(4)), 4), 1);
    BackgroundThread clock([&] { return output->shortMsg(0xF8); });
    wire->setSendStatus(0);
    EXPECT_EQ(clock.result(), 1);
}

// Under AddressSanitizer a buffer that is not freed, or freed twice, is told.
TEST_F(MidiDevices, LongMessagesUnderWayEndWithTheirDevice)
{
    for (const bool closes : {true, false}) {
        auto output = openOutput();
        wire->setSendStatus(-EAGAIN);
        EXPECT_EQ(output->longMsg(headerOf(sysexOf(200)), 200), 1);
        EXPECT_EQ(output->longMsg(headerOf(sysexOf(200)), 0xFFFFFFFFu), 1);
        if (closes)
            EXPECT_EQ(output->close(), 1);
        else
            output = nullptr;
        EXPECT_EQ(wire->outputPorts_, 0);
        EXPECT_THAT(wire->sent(), IsEmpty());
    }
}

TEST_F(MidiDevices, ADeviceThatOutlivesTheConnectionSendsShortMessagesOnly)
{
    const auto output = openOutput();
    midi.deinitialise();
    EXPECT_EQ(output->shortMsg(0x90), 1);
    iMIDIHdr* header = headerOf({0xF0, 0xF7});
    EXPECT_THAT(outputOf([&] { EXPECT_EQ(output->longMsg(header, 2), 0); }), HasSubstr(kRefused));
    midi.freeHeader(header);
}

TEST_F(MidiDevices, KeepTheirPeculiarAnswers)
{
    MIDIInCaps in{7};
    MIDIOutCaps out{7};
    EXPECT_EQ(midi.getInputDevCaps(99, in), 1);
    EXPECT_EQ(midi.getOutputDevCaps(99, out), 1);
    EXPECT_EQ(in.untouched_ + out.untouched_, 14);
    EXPECT_TRUE(midi.getResultText(0).empty());
    unsigned int id = 7;
    const auto input = openInput();
    const auto output = openOutput();
    EXPECT_EQ(input->getID(id) + input->reset() + output->getID(id) + output->reset(), 4);
    EXPECT_EQ(id, 7u);
    EXPECT_EQ(outputOf([] { MIDINotifyProc(nullptr, nullptr); }), "MIDINotifyProc");
}

TEST_F(MidiDevices, ACommandFromTheirOwnThreadIsRefusedInsteadOfWaitingForItself)
{
    struct Closing final : InputCallbackReceiver
    {
        void handleShortMsg(unsigned int, iMidiInputDevice* device, unsigned int) override
        {
            text_ = outputOf([&] { EXPECT_EQ(device->close(), 0); });
            done_ = true;
        }
        void handleLongMsg(unsigned int, iMidiInputDevice*, const unsigned char*,
                           unsigned int) override
        {
        }
        std::string text_;
        std::atomic<bool> done_{false};
    } closing;
    midi.initialise();
    iMidiInputDevice* device = nullptr;
    ASSERT_EQ(midi.open(device, 0, closing), 1);
    const std::unique_ptr<iMidiInputDevice> owner(device);
    device->start();
    wire->arrive({0xF8});
    ASSERT_TRUE(waitUntil([&] { return closing.done_.load(); }));
    EXPECT_THAT(closing.text_, HasSubstr("assertion failed"));
}
