#include "OS/Mac/Devices/MidiPacketWalk.h"
#include "support/FakeMidi.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

// What a receiver is told of packets, as they are walked one by one.
struct Walked
{
    explicit Walked(const std::vector<MidiBytes>& packets)
    {
        MidiPacketWalk walk(3, nullptr, receiver);
        walk.clear();
        for (const MidiBytes& each : packets)
            walk.walk(each.data(), each.size());
    }
    MidiReceiver receiver;
};

using testing::ElementsAre;
using testing::IsEmpty;
using Words = std::vector<unsigned int>;

MidiBytes joined(std::initializer_list<MidiBytes> parts)
{
    MidiBytes all;
    for (const MidiBytes& each : parts)
        all.insert(all.end(), each.begin(), each.end());
    return all;
}

} // namespace

TEST(MidiPacketWalk, ReportsEachMessageOfAPacketByItsFirstFourBytes)
{
    struct
    {
        const char* what;
        MidiBytes packet;
        Words expected;
    } const cases[] = {
        {"note on", {0x90, 0x3C, 0x64}, {0x643C90}},
        {"note on and off", {0x90, 0x3C, 0x64, 0x80, 0x3C, 0x00}, {0x80643C90, 0x80643C90}},
        {"program change, pressure", {0xC0, 0x05, 0xD0, 0x40}, {0x40D005C0, 0x40D005C0}},
        {"pitch bend, clock", {0xE0, 0x00, 0x40, 0xF8}, {0xF84000E0, 0xF84000E0}},
        {"quarter frame, song position, song select, tune request",
         {0xF1, 1, 2, 0xF2, 3, 4, 0xF3, 5, 0xF6},
         {0xF20201F1, 0xF20201F1, 0xF20201F1, 0xF20201F1}},
        {"real time", {0xF8, 0xFA, 0xFB, 0xFE, 0xFF}, Words(5, 0xFEFBFAF8)},
        {"an end that nothing began", {0xF7}, {0xF7}},
        {"running status counts like notes", {0x3C, 0x64, 0x3D, 0x64}, {0x643D643C, 0x643D643C}},
        {"a message cut short", {0x90, 0x3C}, {0x3C90}},
        {"nothing", {}, {}},
        {"complete system-exclusive", {0xF0, 0x7E, 0x01, 0x02, 0xF7}, {0x02017EF0}},
        {"note, then complete system-exclusive",
         {0x90, 1, 2, 0xF0, 0xF7},
         {0xF0020190, 0xF0020190}},
        {"note, then the start of one", {0x90, 1, 2, 0xF0, 5}, {0xF0020190}},
    };
    for (const auto& each : cases) {
        const Walked walked({each.packet});
        EXPECT_EQ(walked.receiver.shorts(), each.expected) << each.what;
        EXPECT_THAT(walked.receiver.longs(), IsEmpty()) << each.what;
    }
}

TEST(MidiPacketWalk, JoinsAMessageInSeveralPackets)
{
    const Walked walked({{0xF0, 1, 2}, {3, 0xF8, 4}, {5, 0xF7}, {0x90, 1, 2}});
    EXPECT_THAT(walked.receiver.longs(), ElementsAre(MidiBytes{0xF0, 1, 2, 3, 0xF8, 4, 5, 0xF7}));
    EXPECT_THAT(walked.receiver.shorts(), ElementsAre(0x020190u));
}

TEST(MidiPacketWalk, AppendsToWhatCompletePacketsLeft)
{
    const MidiBytes complete = {0xF0, 9, 0xF7};
    const Walked walked({complete, {0xF0, 1}, {2, 0xF7}, {0xF0, 3}, {0xF7}});
    EXPECT_THAT(walked.receiver.longs(),
                ElementsAre(joined({complete, {0xF0, 1, 2, 0xF7}}), MidiBytes{0xF0, 3, 0xF7}));
    EXPECT_THAT(walked.receiver.shorts(), ElementsAre(0xF709F0u));
}

TEST(MidiPacketWalk, DeliversAFullBufferAndGoesOn)
{
    const MidiBytes message = sysexOf(2048 + 7);
    std::vector<MidiBytes> packets;
    for (std::size_t at = 0; at < message.size(); at += 256)
        packets.emplace_back(message.begin() + static_cast<long>(at),
                             message.begin() +
                                 static_cast<long>(std::min(at + 256, message.size())));
    const Walked walked(packets);
    ASSERT_EQ(walked.receiver.longs().size(), 3u);
    EXPECT_EQ(walked.receiver.longs()[0].size(), 1024u);
    EXPECT_EQ(walked.receiver.longs()[1].size(), 1024u);
    EXPECT_EQ(walked.receiver.longBytes(), message);
}

TEST(MidiPacketWalk, NeverWritesBehindItsBuffer)
{
    std::vector<MidiBytes> packets(6, sysexOf(256)); // two more than fit
    packets.push_back(MidiBytes(5000, 0xF0));
    packets.push_back(MidiBytes(5000, 0x01));
    packets.push_back({0xF7});
    const Walked walked(packets);
    for (const MidiBytes& each : walked.receiver.longs())
        EXPECT_LE(each.size(), 1024u);
    EXPECT_EQ(walked.receiver.shorts(), Words(6, 0x150E07F0));
}

TEST(MidiPacketWalk, LosesNothingOfALongMessageHoweverItsSourceDividesIt)
{
    for (const std::size_t size : {257u, 1024u, 1025u, 4096u, 100'000u})
        for (const std::size_t piece : {1u, 3u, 255u, 256u, 300u, 1023u, 1024u, 1025u, 32'000u}) {
            MidiReceiver receiver;
            MidiPacketWalk walk(0, nullptr, receiver);
            const MidiBytes message = sysexOf(size);
            for (const int repeat : {1, 2}) {
                for (std::size_t at = 0; at < size; at += piece)
                    walk.receive(message.data() + at, std::min(piece, size - at));
                EXPECT_EQ(receiver.longBytes().size(), size * static_cast<unsigned int>(repeat))
                    << size << " in pieces of " << piece;
            }
            EXPECT_EQ(receiver.longBytes(), joined({message, message}));
            EXPECT_THAT(receiver.shorts(), IsEmpty());
        }
}

TEST(MidiPacketWalk, LosesNothingBehindAFullBuffer)
{
    for (const std::size_t left : {1u, 200u, 252u, 253u, 256u}) {
        MidiReceiver receiver;
        MidiPacketWalk walk(0, nullptr, receiver);
        std::size_t stale = 0;
        for (int i = 0; i < 4; ++i, stale += left)
            walk.receive(sysexOf(left).data(), left);
        const MidiBytes message = sysexOf(700);
        walk.receive(message.data(), message.size());
        const MidiBytes all = receiver.longBytes();
        if (left == 1)
            continue; // a start that goes on
        ASSERT_EQ(all.size(), stale + message.size()) << left;
        EXPECT_TRUE(std::equal(message.begin(), message.end(), all.end() - 700)) << left;
    }
}
