#include "Board.h"
#include "MadeUpData.h"
#include "support/BackgroundThread.h"
#include "support/PtyPair.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <gtest/gtest.h>

namespace Quay {
namespace {

const Panel panelOf(const SerialMonitor& monitor)
{
    SerialPorts serial;
    serial.read = true;
    serial.ports = {{L"/dev/ttyS0", L"", L""}, {L"/dev/ttyUSB0", L"Jog wheel", L"A100"}};
    serial.monitor = monitor;
    return serialPanel(serial, {});
}

SerialMonitor watched(const std::string& bytes)
{
    SerialMonitor monitor;
    monitor.path = L"/dev/ttyUSB0";
    monitor.open = true;
    monitor.add(bytes.size(), {bytes.begin(), bytes.end()});
    return monitor;
}

TEST(SerialPanelTest, ListsPortsWithWhatIsBehindThem)
{
    const Panel panel = panelOf({});
    EXPECT_EQ(panel.fact, L"2 ports");
    const auto& plain = std::get<ItemRow>(panel.rows[0]);
    EXPECT_EQ(plain.label, L"ttyS0");
    EXPECT_EQ(plain.detail, L"/dev/ttyS0");
    const auto& usb = std::get<ItemRow>(panel.rows[1]);
    EXPECT_EQ(usb.detail, L"Jog wheel \u00b7 A100");
    EXPECT_EQ(usb.action.path, L"/dev/ttyUSB0");
    EXPECT_EQ(std::get<ChoiceRow>(panel.rows[2]).chosen, 0);
}

TEST(SerialPanelTest, ShowsTheLastBytesAndDoesNotGrowWithThem)
{
    const auto line = [](const Panel& panel, std::size_t i) {
        const auto& row = std::get<BytesRow>(panel.rows[4 + i]);
        return row.place + L":" +
               OS()->utils()->fromUTF8(reinterpret_cast<const char*>(row.bytes.data()),
                                       static_cast<int>(row.bytes.size()));
    };
    const Panel some = panelOf(watched("\x01 Jog"));
    EXPECT_EQ(line(some, 0), L"000000:\x01 Jog");
    SerialMonitor monitor = watched(std::string(1000, 'x'));
    monitor.add(3, {'e', 'n', 'd'});
    EXPECT_EQ(monitor.received, 1003u);
    const Panel many = panelOf(monitor);
    EXPECT_EQ(line(many, 3), L"0003E8:end");
    EXPECT_EQ(line(many, 0), L"0003D0:xxxxxxxx");
    EXPECT_EQ(many.rows.size(), some.rows.size());
    EXPECT_EQ(panelOf(watched("")).rows.size(), some.rows.size());
}

TEST(SerialWatcherTest, CountsWhatComesAndKeepsTheLast)
{
    const PtyPair line;
    std::atomic<int> news{0};
    SerialWatcher watcher([&] { ++news; });
    SerialMonitor monitor = watcher.watch(OS()->utils()->fromUTF8(line.path().c_str(), -1), 9600);
    ASSERT_TRUE(monitor.open);
    ASSERT_TRUE(line.send(std::string(995, 'x') + "tail."));
    EXPECT_TRUE(waitUntil([&] {
        watcher.take(monitor);
        return monitor.received == 1000;
    }));
    EXPECT_GE(news, 1);
    EXPECT_EQ(monitor.latest.size(), SerialMonitor::kKept);
    EXPECT_EQ(std::string(monitor.latest.end() - 5, monitor.latest.end()), "tail.");
    watcher.stop();
    EXPECT_FALSE(watcher.take(monitor));
}

TEST(SerialWatcherTest, WhatCannotBeOpenedIsSaid)
{
    SerialWatcher watcher([] {});
    EXPECT_FALSE(watcher.watch(L"/dev/no-such-port", 9600).open);
    SerialPorts serial;
    serial.monitor.path = L"/dev/no-such-port";
    EXPECT_EQ(std::get<NoteRow>(serialPanel(serial, {}).rows[3]).text, L"It cannot be opened");
}

} // namespace
} // namespace Quay
