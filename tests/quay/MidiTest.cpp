#include "Board.h"
#include "MadeUpData.h"
#include "support/JackServer.h"

#include <OS.h>
#include <OS/Devices/iMIDI.h>

#include <gtest/gtest.h>

namespace Quay {
namespace {

// What the panel says of the messages: label and value of each row below the monitor's heading.
std::vector<std::pair<Text, Text>> rowsOf(const std::vector<MidiMessage>& messages)
{
    MidiDevices midi;
    midi.monitor.name = L"Keys";
    midi.monitor.open = true;
    midi.monitor.add(messages.size(), messages);
    const Panel panel = midiPanel(midi);
    std::vector<std::pair<Text, Text>> rows;
    for (const Row& row : panel.rows)
        if (const auto* fact = std::get_if<FactRow>(&row))
            rows.emplace_back(fact->label, fact->value);
    return rows;
}

TEST(MidiPanelTest, ListsInputsToWatchAndOutputs)
{
    BoardData data = madeUpData(8, 6, 2);
    const Panel panel = midiPanel(data.midi);
    EXPECT_EQ(panel.fact, L"4 devices");
    const auto& hardware = std::get<ItemRow>(panel.rows[0]);
    EXPECT_EQ(hardware.label, L"Keys 1");
    EXPECT_EQ(hardware.detail, L"Kontor");
    EXPECT_EQ(hardware.action.path, L"Keys 1");
    EXPECT_EQ(std::get<ItemRow>(panel.rows[1]).detail, L"a program");
    EXPECT_EQ(std::get<HeadingRow>(panel.rows[2]).fact, L"by ALSA");
    EXPECT_EQ(std::get<FactRow>(panel.rows[3]).value, L"Synth 1");

    EXPECT_EQ(std::get<NoteRow>(midiPanel({}).rows[0]).text, L"The system has no services for it");
}

TEST(MidiPanelTest, SaysWhatMessagesMean)
{
    const struct
    {
        MidiMessage message;
        const wchar_t* label;
        const wchar_t* value;
    } cases[] = {
        {{0x643C90, 0}, L"Note on", L"channel 1 \u00b7 key 60 \u00b7 velocity 100"},
        {{0x003C91, 0}, L"Note off", L"channel 2 \u00b7 key 60"},
        {{0x403C8F, 0}, L"Note off", L"channel 16 \u00b7 key 60"},
        {{0x7F07B0, 0}, L"Control", L"channel 1 \u00b7 7 \u00b7 127"},
        {{0x0005C0, 0}, L"Program", L"channel 1 \u00b7 5"},
        {{0x4000E0, 0}, L"Pitch bend", L"channel 1 \u00b7 0"},
        {{0x0000E0, 0}, L"Pitch bend", L"channel 1 \u00b7 -8192"},
        {{0x0000F8, 0}, L"Clock", L""},
        {{0x02017EF0, 0}, L"Exclusive", L""},
        {{0, 1024}, L"Exclusive", L"1024 bytes"},
        {{0x643C, 0}, L"Running status", L""},
    };
    for (const auto& each : cases) {
        const auto rows = rowsOf({each.message});
        ASSERT_EQ(rows.size(), 1u);
        EXPECT_EQ(rows[0].first, each.label);
        EXPECT_EQ(rows[0].second, each.value);
    }
}

TEST(MidiPanelTest, ShowsTheLastMessagesAndDoesNotGrowWithThem)
{
    const BoardData data = madeUpData(8, 6, 2);
    const std::size_t rows = midiPanel(withMidiMessages(data, 0).midi).rows.size();
    EXPECT_EQ(midiPanel(withMidiMessages(data, 1).midi).rows.size(), rows);
    EXPECT_EQ(midiPanel(withMidiMessages(data, 5000).midi).rows.size(), rows);
    EXPECT_EQ(rowsOf(std::vector<MidiMessage>(9, {0xF8, 0})).size(), MidiMonitor::kKept);
}

TEST(MidiWatcherTest, WhatCannotBeOpenedIsSaid)
{
    MidiWatcher watcher([] {});
    MidiDevices midi;
    midi.monitor = watcher.watch(L"no such input");
    EXPECT_FALSE(midi.monitor.open);
    EXPECT_EQ(std::get<NoteRow>(midiPanel(midi).rows[2]).text, L"It cannot be opened");
}

TEST(MidiWatcherTest, CountsWhatComesAndKeepsTheLast)
{
    OS()->midi()->deinitialise();
    setenv("VANTOR_MIDI", "jack", 1);
    {
        JackServer server;
        if (!server.isInstalled())
            GTEST_SKIP() << "no JACK server is installed here";
        JackPeer peer;
        MidiDevices midi;
        EXPECT_TRUE(waitUntil([&] {
            gatherMidi(midi);
            return midi.inputs.size() == 1;
        }));
        EXPECT_EQ(midi.services, L"JACK");
        std::atomic<int> news{0};
        MidiWatcher watcher([&] { ++news; });
        MidiMonitor monitor = watcher.watch(L"peer:out");
        ASSERT_TRUE(monitor.open);
        for (unsigned char i = 0; i < 100; ++i)
            peer.send({0x90, i, 100});
        EXPECT_TRUE(waitUntil([&] {
            watcher.take(monitor);
            return monitor.received == 100;
        }));
        EXPECT_GE(news, 1);
        ASSERT_EQ(monitor.latest.size(), MidiMonitor::kKept);
        EXPECT_EQ(monitor.latest.back().word, 0x646390u);
        watcher.stop();
        EXPECT_FALSE(watcher.take(monitor));
        OS()->midi()->deinitialise();
    }
    unsetenv("VANTOR_MIDI");
}

} // namespace
} // namespace Quay
