// The parts of the host's MIDI that need no MIDI services.

#include "OS/Host/Midi/AlsaClient.h"
#include "OS/Host/Midi/AlsaEventCoding.h"
#include "OS/Host/Midi/PacketRing.h"
#include "OS/Host/Midi/SigPipeBlock.h"
#include "support/FakeMidi.h"
#include "support/OutputCapture.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <thread>

namespace {

using OSInternal::AlsaDecoder;
using OSInternal::AlsaEncoder;
using OSInternal::MidiSystem;
using testing::ElementsAre;

// The bytes that a reader gets for each event of a packet.
std::vector<MidiBytes> throughEvents(AlsaEncoder& encoder, const MidiBytes& packet)
{
    AlsaDecoder decoder;
    std::vector<MidiBytes> result;
    encoder.encode(packet, [&](snd_seq_event_t& event) {
        const auto bytes = decoder.decode(event);
        result.emplace_back(bytes.begin(), bytes.end());
        return 0;
    });
    return result;
}

} // namespace

TEST(AlsaEventCoding, KeepsEveryKindOfMessage)
{
    const MidiBytes messages[] = {{0x80, 1, 2}, {0x9F, 1, 0}, {0xA3, 1, 2},  {0xB0, 7, 127},
                                  {0xC5, 3},    {0xD0, 4},    {0xE0, 0, 64}, {0xF1, 5},
                                  {0xF2, 1, 2}, {0xF3, 6},    {0xF6},        {0xF8},
                                  {0xFA},       {0xFB},       {0xFC},        {0xFE},
                                  {0xFF},       {0xF0, 0xF7}, sysexOf(4)};
    AlsaEncoder encoder;
    for (const MidiBytes& each : messages) {
        EXPECT_THAT(throughEvents(encoder, each), ElementsAre(each));
        EXPECT_THAT(throughEvents(encoder, each), ElementsAre(each)) << "after itself";
    }
}

TEST(AlsaEventCoding, SendsTheFourBytesOfAShortMessage)
{
    struct
    {
        const char* what;
        MidiBytes packet;
        std::vector<MidiBytes> events;
    } const cases[] = {
        {"note", {0x90, 0x3C, 0x64, 0}, {{0x90, 0x3C, 0x64}}},
        {"clock", {0xF8, 0, 0, 0}, {{0xF8}}},
        {"program change, and zeros of running status",
         {0xC0, 0, 0, 0},
         {{0xC0, 0}, {0xC0, 0}, {0xC0, 0}}},
        {"no status", {0, 0, 0, 0}, {}},
        {"start of a system-exclusive message", {0xF0, 1, 2, 3}, {{0xF0, 1, 2, 3}}},
    };
    AlsaEncoder encoder;
    for (const auto& each : cases)
        EXPECT_EQ(throughEvents(encoder, each.packet), each.events) << each.what;
}

TEST(AlsaEventCoding, PacketsDoNotLeakIntoEachOther)
{
    AlsaEncoder encoder;
    EXPECT_TRUE(throughEvents(encoder, {0x90, 0x3C}).empty());
    EXPECT_TRUE(throughEvents(encoder, {0x64}).empty());
}

TEST(AlsaEventCoding, StopsAtARefusal)
{
    AlsaEncoder encoder;
    int events = 0;
    const MidiBytes packet = {0xF8, 0xFA, 0xFB};
    EXPECT_EQ(encoder.encode(packet, [&](snd_seq_event_t&) { return ++events == 2 ? -5 : 0; }), -5);
    EXPECT_EQ(events, 2);
}

TEST(AlsaEventCoding, OtherEventsAreNoMessages)
{
    AlsaDecoder decoder;
    snd_seq_event_t event;
    snd_seq_ev_clear(&event);
    for (const unsigned char type : {SND_SEQ_EVENT_PORT_SUBSCRIBED, SND_SEQ_EVENT_CLIENT_EXIT,
                                     SND_SEQ_EVENT_ECHO, SND_SEQ_EVENT_NONE}) {
        event.type = type;
        EXPECT_TRUE(decoder.decode(event).empty()) << int(type);
    }
}

TEST(AlsaClient, ReadsTheMakerOfACardWhereItsBusTells)
{
    const TemporaryFolder root;
    namespace fs = std::filesystem;
    const fs::path usb = root.path("sys/devices/usb1");
    fs::create_directories(usb / "1-2/1-2:1.0");
    std::ofstream(usb / "1-2/manufacturer") << "Kloster & S\xC3\xB6hne \n";
    fs::create_directories(root.path("sys/class/sound/card1"));
    fs::create_symlink(usb / "1-2/1-2:1.0", root.path("sys/class/sound/card1/device"));
    EXPECT_EQ(OSInternal::alsaCardManufacturer(1, root.path()), "Kloster & S\xC3\xB6hne");
    EXPECT_EQ(OSInternal::alsaCardManufacturer(2, root.path()), "");
}

TEST(AlsaClient, TakesNothingElseForAnAddress)
{
    snd_seq_addr_t address;
    EXPECT_TRUE(OSInternal::parseAlsaAddress("128:3", address));
    EXPECT_EQ(address.client, 128);
    EXPECT_EQ(address.port, 3);
    EXPECT_FALSE(OSInternal::parseAlsaAddress("system:midi", address));
}

TEST(PacketRing, KeepsPacketsWholeAndInOrderAcrossItsEnd)
{
    OSInternal::PacketRing ring(1024);
    std::thread producer([&] {
        for (std::uint32_t i = 0; i < 20'000; ++i) {
            const MidiBytes packet(i % 300, static_cast<unsigned char>(i));
            while (!ring.push(packet.data(), i % 300))
                std::this_thread::yield();
        }
    });
    for (std::uint32_t i = 0; i < 20'000; ++i) {
        std::uint32_t length = 0;
        while (!ring.peek(length))
            std::this_thread::yield();
        MidiBytes packet(length);
        ring.pop(packet.data(), length);
        ASSERT_EQ(packet, MidiBytes(i % 300, static_cast<unsigned char>(i))) << i;
    }
    producer.join();
    EXPECT_EQ(ring.used(), 0u);
}

TEST(PacketRing, RefusesWhatDoesNotFitAndKeepsTheRest)
{
    OSInternal::PacketRing ring(16);
    const MidiBytes bytes(13, 1);
    EXPECT_FALSE(ring.push(bytes.data(), 13));
    EXPECT_TRUE(ring.push(bytes.data(), 12));
    EXPECT_FALSE(ring.push(bytes.data(), 0));
    std::uint32_t length = 0;
    ASSERT_TRUE(ring.peek(length));
    EXPECT_EQ(length, 12u);
}

TEST(SigPipeBlock, SwallowsItsOwnSignalAndGivesTheMaskBack)
{
    sigset_t before, after;
    pthread_sigmask(SIG_SETMASK, nullptr, &before);
    {
        const OSInternal::SigPipeBlock block;
        pthread_kill(pthread_self(), SIGPIPE); // would end the process
    }
    pthread_sigmask(SIG_SETMASK, nullptr, &after);
    EXPECT_EQ(sigismember(&before, SIGPIPE), sigismember(&after, SIGPIPE));
}

TEST(MidiSystem, WithoutServicesThereAreNoDevicesAndNoWords)
{
    // Whatever is wanted, a server that does not exist.
    setenv("JACK_DEFAULT_SERVER", "vantor-no-such-server", 1);
    for (const char* wanted : {"none", "jack"}) {
        setenv("VANTOR_MIDI", wanted, 1);
        OutputCapture errors(OutputCapture::eStderr);
        EXPECT_EQ(outputOf([] {
                      const auto system = MidiSystem::open();
                      EXPECT_STREQ(system->name(), "none");
                      EXPECT_TRUE(system->sources().empty());
                      EXPECT_TRUE(system->destinations().empty());
                  }),
                  "");
        EXPECT_EQ(errors.text(), "");
    }
    unsetenv("VANTOR_MIDI");
    unsetenv("JACK_DEFAULT_SERVER");
}
