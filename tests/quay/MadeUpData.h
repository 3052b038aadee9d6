#pragma once

#include "Model/BoardData.h"
#include "View/BoardState.h"

#include <cmath>

namespace Quay {

/// The course of a load that looks like one.
inline History madeUpHistory(int seed, double middle)
{
    History history;
    for (std::size_t i = 0; i < History::kLength; ++i) {
        const double t = static_cast<double>(i);
        history.add(middle + 0.18 * std::sin(t / 5.0 + seed) + 0.1 * std::sin(t * 1.7 + 3 * seed));
    }
    return history;
}

/// A machine of so many parts.
inline BoardData madeUpData(int processors, int drives, int monitors)
{
    constexpr std::uint64_t kGiB = std::uint64_t(1) << 30;
    BoardData data;
    data.readings = 61;
    data.processors.configured = static_cast<unsigned int>(processors);
    data.processors.all = madeUpHistory(0, 0.4);
    for (int i = 0; i < processors; ++i)
        data.processors.each.push_back(madeUpHistory(i + 1, 0.15 + 0.8 * (i % 7) / 7.0));
    data.memory = {64 * kGiB, 41 * kGiB, 6 * kGiB, kGiB / 9, kGiB, madeUpHistory(4, 0.36)};
    int left = 0;
    for (int i = 0; i < monitors; ++i) {
        const int width = i % 2 == 0 ? 2560 : 1080;
        const int height = i % 2 == 0 ? 1440 : 1920;
        const Rect full{left, i % 2 == 0 ? 0 : -240, left + width,
                        (i % 2 == 0 ? 0 : -240) + height};
        data.monitors.push_back({L"DP-" + decimal(i + 1),
                                 full,
                                 {full.left, full.top + (i == 0 ? 32 : 0), full.right, full.bottom},
                                 {597, 336},
                                 i % 2 == 0 ? 1.5 : 1.0,
                                 59.94,
                                 24,
                                 i == 0});
        left += width;
    }
    static const Drive kDrives[] = {
        {L"/", L"/", L"ext4", iDiskDrive::eFixed, false, 465 * kGiB, 121 * kGiB},
        {L"Projects", L"/mnt/projects/", L"xfs", iDiskDrive::eFixed, false, 3726 * kGiB,
         150 * kGiB},
        {L"CARD_A", L"/media/editor/CARD_A/", L"exfat", iDiskDrive::eRemovable, false, 119 * kGiB,
         60 * kGiB},
        {L"Rushes 2026", L"/media/editor/Rushes 2026/", L"iso9660", iDiskDrive::eOptical, true,
         25 * kGiB, 0},
        {L"archive", L"/net/archive/", L"cifs", iDiskDrive::eNetwork, false, 14901 * kGiB,
         9000 * kGiB},
        {L"scratch", L"/mnt/scratch/", L"tmpfs", iDiskDrive::eMemory, false, 16 * kGiB, 16 * kGiB},
        {L"gone", L"/mnt/gone/", L"nfs4", iDiskDrive::eNetwork, false, 0, 0}};
    for (int i = 0; i < drives; ++i)
        data.volumes.drives.drives.push_back(kDrives[i % 7]);
    data.volumes.drives.read = true;
    if (drives > 0) {
        data.volumes.network.servers = {
            {L"archive", {{L"video", L"/net/archive/"}, {L"music", L"/net/music/"}}}};
        data.volumes.network.mounts = {
            {L"smb://archive/video", L"/run/user/1000/gvfs/video/", L"video on archive", true}};
    }
    data.volumes.folders = {
        {L"Home", L"/home/editor/", true, true},
        {L"Desktop", L"/home/editor/Desktop/", true, true},
        {L"Movies", L"/home/editor/Videos/", true, false},
        {L"Fonts", L"/home/editor/.local/share/fonts/", false, false},
        {L"Application data", L"/home/editor/.local/share/Quay/", false, false}};
    data.settings = {{L"User",
                      L"/home/editor/Quay Board/Preferences/UserSettings.txt",
                      true,
                      {{L"Board", {{L"RefreshMs", L"1000"}, {L"Units", L"binary"}}},
                       {L"Window", {{L"Height", L"800"}, {L"Width", L"1280"}}}}},
                     {L"Global",
                      L"/home/editor/Quay Board/Preferences/GlobalSettings.txt",
                      true,
                      {{L"Configuration", {{L"VirtualPoolSizeMb", L"1048576"}}}}}};
    data.system = {L"Quay Board", L"edit-07",   L"Debian GNU/Linux (12)",
                   L"Mesa",       L"/usr/bin/", L"quay",
                   4242,          false};
    data.serial.read = true;
    for (int i = 0; i < drives / 3; ++i)
        data.serial.ports.push_back(
            {L"/dev/ttyUSB" + decimal(i), i == 0 ? L"Jog wheel" : L"", i == 0 ? L"A100" : L""});
    data.midi.services = L"ALSA";
    for (int i = 0; i < drives / 3; ++i) {
        data.midi.inputs.push_back({L"Keys " + decimal(i + 1), i == 0 ? L"Kontor" : L"", i > 0});
        data.midi.outputs.push_back({L"Synth " + decimal(i + 1), L"", i > 0});
    }
    data.volumes.compute = {
        true,
        {{L"Runtime", L"Card 1", L"OpenCL 3.0", true, true, true, L""},
         {L"Processors", L"CPU", L"OpenCL 3.0", false, false, false, L"it is no GPU"}}};
    return data;
}

/// With an input watched, from which so many messages have come.
inline BoardData withMidiMessages(BoardData data, std::uint64_t count)
{
    MidiMonitor& monitor = data.midi.monitor;
    monitor.name = L"Keys 1";
    monitor.open = true;
    for (std::uint64_t i = 0; i < count; ++i)
        monitor.add(1, {{0x403C90u + static_cast<std::uint32_t>(i % 12 << 8), 0}});
    return data;
}

/// With a port watched, over which so much has come.
inline BoardData withSerialBytes(BoardData data, std::uint64_t count)
{
    SerialMonitor& monitor = data.serial.monitor;
    monitor.path = L"/dev/ttyUSB0";
    monitor.open = true;
    for (std::uint64_t i = 0; i < count; ++i)
        monitor.add(1, {static_cast<std::uint8_t>(i * 37 + 60)});
    return data;
}

inline BoardState madeUpState(const BoardData& data, const Point& size = {1280, 800})
{
    BoardState state;
    state.data = data;
    state.size = size;
    state.remake();
    return state;
}

/// Every name as long as names get.
inline BoardData withLongNames(BoardData data)
{
    const Text tail = L" with a name that goes on and on and does not fit anywhere at all";
    for (Drive& drive : data.volumes.drives.drives) {
        drive.name += tail;
        drive.path += tail;
        drive.fileSystem += tail;
    }
    for (Server& server : data.volumes.network.servers) {
        server.name += tail;
        for (Share& share : server.shares) {
            share.name += tail;
            share.path += tail;
        }
    }
    for (Mount& mount : data.volumes.network.mounts) {
        mount.name += tail;
        mount.address += tail;
    }
    for (Folder& folder : data.volumes.folders) {
        folder.label += tail;
        folder.path += tail;
    }
    for (Monitor& monitor : data.monitors)
        monitor.name += tail;
    for (SettingsStore& store : data.settings) {
        store.path += tail;
        for (SettingsSection& section : store.sections)
            for (Setting& setting : section.settings) {
                setting.name += tail;
                setting.value += tail;
            }
    }
    for (SerialPort& port : data.serial.ports)
        port.product += tail;
    for (auto* devices : {&data.midi.inputs, &data.midi.outputs})
        for (MidiDevice& device : *devices)
            device.name += tail;
    data.system.computer += tail;
    data.system.version += tail;
    data.system.application += tail;
    data.system.programFolder += tail;
    data.system.programName += tail;
    return data;
}

} // namespace Quay
