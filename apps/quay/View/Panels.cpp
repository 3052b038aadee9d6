#include "View/Panels.h"

#include <algorithm>

namespace Quay {

namespace {

constexpr double kNearlyFull = 0.9;

Text sizeOf(const Rect& rect)
{
    return decimal(rect.width()) + L" \u00D7 " + decimal(rect.height());
}

Text spanText(std::size_t readings, int refreshMs)
{
    return L"last " + shortNumber(static_cast<double>(readings) * refreshMs / 1000.0) + L" s";
}

const wchar_t* typeName(iDiskDrive::eType type)
{
    switch (type) {
    case iDiskDrive::eRemovable:
        return L"removable";
    case iDiskDrive::eNetwork:
        return L"network";
    case iDiskDrive::eOptical:
        return L"optical";
    case iDiskDrive::eMemory:
        return L"memory";
    default:
        return L"fixed";
    }
}

Tone toneOf(iDiskDrive::eType type)
{
    switch (type) {
    case iDiskDrive::eNetwork:
        return Tone::ePurple;
    case iDiskDrive::eMemory:
        return Tone::eTeal;
    case iDiskDrive::eRemovable:
    case iDiskDrive::eOptical:
        return Tone::eGold;
    default:
        return Tone::eBlue;
    }
}

MeterRow driveRow(const Drive& drive, Units units)
{
    MeterRow row;
    row.label = drive.name;
    row.detail = (drive.name == drive.path ? Text() : drive.path + L" \u00b7 ") + drive.fileSystem +
                 L" \u00b7 " + typeName(drive.type);
    row.tag = drive.readOnly ? L"read only" : L"";
    if (drive.total == 0) {
        row.value = L"size unknown";
        return row;
    }
    const std::uint64_t free = std::min(drive.free, drive.total);
    row.value = sizeText(free, units) + L" free of " + sizeText(drive.total, units);
    const double used = 1.0 - static_cast<double>(free) / static_cast<double>(drive.total);
    // What can only be read is full by its nature.
    const bool full = used >= kNearlyFull && !drive.readOnly;
    row.parts.push_back({used, full ? Tone::eRed : toneOf(drive.type)});
    return row;
}

Text textOr(const Text& text, const wchar_t* otherwise)
{
    return text.empty() ? Text(otherwise) : text;
}

} // namespace

int actionCount(const Row& row)
{
    if (const auto* item = std::get_if<ItemRow>(&row))
        return item->action.kind == Action::Kind::eNone ? 0 : 1;
    if (const auto* choice = std::get_if<ChoiceRow>(&row))
        return static_cast<int>(choice->options.size());
    return 0;
}

Action actionOf(const Row& row, int part)
{
    if (part < 0 || part >= actionCount(row))
        return {};
    if (const auto* item = std::get_if<ItemRow>(&row))
        return item->action;
    return std::get<ChoiceRow>(row).options[static_cast<std::size_t>(part)].action;
}

Panel processorsPanel(const Processors& processors, const Preferences& preferences)
{
    Panel panel{L"processors", L"Processors", {}, {}};
    panel.fact = countText(processors.configured, L"processor", L"processors");
    const std::size_t online = processors.each.size();
    if (processors.all.values.empty()) {
        panel.rows.push_back(NoteRow{L"No readings of the load yet"});
        return panel;
    }
    panel.rows.push_back(GraphRow{processors.all,
                                  L"all, " + spanText(History::kLength, preferences.refreshMs),
                                  percentText(processors.all.last()), Tone::eTeal});
    if (online > 0)
        panel.rows.push_back(CellsRow{processors.each, Tone::eTeal});
    return panel;
}

Panel memoryPanel(const Memory& memory, const Preferences& preferences)
{
    Panel panel{L"memory", L"Memory", {}, {}};
    const Units units = preferences.units;
    if (memory.total == 0) {
        panel.rows.push_back(NoteRow{L"The system does not tell"});
        return panel;
    }
    panel.fact = sizeText(memory.total, units);
    panel.rows.push_back(GraphRow{memory.used,
                                  L"used, " + spanText(History::kLength, preferences.refreshMs),
                                  percentText(memory.usedPart()), Tone::eBlue});
    const auto total = static_cast<double>(memory.total);
    const double used = memory.usedPart();
    const double wired = std::min(used, static_cast<double>(memory.wired) / total);
    panel.rows.push_back(MeterRow{
        L"Used",
        {},
        sizeText(memory.total - std::min(memory.available, memory.total), units) + L" of " +
            sizeText(memory.total, units),
        {},
        {{wired, Tone::ePurple}, {used - wired, used >= kNearlyFull ? Tone::eRed : Tone::eBlue}}});
    panel.rows.push_back(FactRow{L"Available", sizeText(memory.available, units)});
    panel.rows.push_back(FactRow{L"Wired", sizeText(memory.wired, units)});
    panel.rows.push_back(FactRow{L"This program", sizeText(memory.resident, units) +
                                                      L" resident of " +
                                                      sizeText(memory.mapped, units) + L" mapped"});
    return panel;
}

Panel monitorsPanel(const std::vector<Monitor>& monitors)
{
    Panel panel{L"monitors", L"Monitors", countText(monitors.size(), L"monitor", L"monitors"), {}};
    if (monitors.empty()) {
        panel.rows.push_back(NoteRow{L"No monitor"});
        return panel;
    }
    MapRow map;
    for (const Monitor& monitor : monitors)
        map.places.push_back(
            {monitor.full, monitor.desktop, monitor.name, sizeOf(monitor.full), monitor.primary});
    panel.rows.push_back(map);
    for (const Monitor& monitor : monitors) {
        panel.rows.push_back(HeadingRow{textOr(monitor.name, L"Without a name"),
                                        monitor.primary ? L"primary" : L""});
        panel.rows.push_back(FactRow{L"Size", sizeOf(monitor.full) + L" at " +
                                                  decimal(monitor.full.left) + L", " +
                                                  decimal(monitor.full.top)});
        Text facts = L"scale " + shortNumber(monitor.scale);
        if (monitor.refreshHz > 0.0)
            facts += L" \u00b7 " + shortNumber(monitor.refreshHz) + L" Hz";
        facts += L" \u00b7 " + decimal(monitor.bitsPerPixel) + L" bit";
        panel.rows.push_back(FactRow{L"Picture", facts});
        if (monitor.sizeMm.x > 0 && monitor.sizeMm.y > 0)
            panel.rows.push_back(FactRow{L"Measures", decimal(monitor.sizeMm.x) + L" \u00D7 " +
                                                          decimal(monitor.sizeMm.y) + L" mm"});
    }
    return panel;
}

Panel drivesPanel(const Drives& drives, Units units)
{
    Panel panel{L"drives", L"Drives", countText(drives.drives.size(), L"drive", L"drives"), {}};
    for (const Drive& drive : drives.drives)
        panel.rows.push_back(driveRow(drive, units));
    if (drives.drives.empty())
        panel.rows.push_back(
            NoteRow{drives.read ? L"No drive is mounted" : L"Nothing has been told yet"});
    return panel;
}

Panel networkPanel(const Network& network)
{
    Panel panel{L"network", L"Network", {}, {}};
    panel.fact = countText(network.servers.size(), L"server", L"servers");
    for (const Server& server : network.servers) {
        panel.rows.push_back(
            HeadingRow{server.name, countText(server.shares.size(), L"share", L"shares")});
        for (const Share& share : server.shares)
            panel.rows.push_back(ItemRow{share.name,
                                         share.path,
                                         L"share",
                                         Tone::ePurple,
                                         true,
                                         {Action::Kind::eOpenFolder, share.path, 0}});
    }
    if (network.servers.empty())
        panel.rows.push_back(NoteRow{L"No server is in use"});
    panel.rows.push_back(HeadingRow{
        L"Mounts",
        network.mounts.empty() ? Text() : countText(network.mounts.size(), L"volume", L"volumes")});
    for (const Mount& mount : network.mounts)
        panel.rows.push_back(ItemRow{mount.name,
                                     mount.address,
                                     mount.byDesktop ? L"desktop" : L"system",
                                     Tone::ePurple,
                                     true,
                                     {Action::Kind::eOpenFolder, mount.path, 0}});
    if (network.mounts.empty())
        panel.rows.push_back(NoteRow{L"None mounted"});
    return panel;
}

Panel foldersPanel(const std::vector<Folder>& folders)
{
    Panel panel{L"folders", L"Folders", {}, {}};
    std::size_t present = 0;
    for (const Folder& folder : folders) {
        present += folder.present ? 1 : 0;
        ItemRow row;
        row.label = folder.label;
        row.detail = folder.path;
        row.there = folder.present;
        row.tone = folder.writable ? Tone::eTeal : Tone::eGold;
        row.tag = folder.path.empty() ? L"unknown"
                  : !folder.present   ? L"missing"
                  : folder.writable   ? L"writable"
                                      : L"read only";
        if (folder.present)
            row.action = {Action::Kind::eOpenFolder, folder.path, 0};
        panel.rows.push_back(row);
    }
    panel.fact = decimal(static_cast<int>(present)) + L" of " +
                 decimal(static_cast<int>(folders.size())) + L" present";
    if (folders.empty())
        panel.rows.push_back(NoteRow{L"Nothing has been told yet"});
    return panel;
}

Panel settingsPanel(const std::vector<SettingsStore>& stores, const Preferences& preferences)
{
    Panel panel{L"settings", L"Settings", {}, {}};
    ChoiceRow units{L"Sizes", {}, static_cast<int>(preferences.units)};
    units.options = {{L"KiB, GiB", {Action::Kind::eSetUnits, {}, 0}},
                     {L"kB, GB", {Action::Kind::eSetUnits, {}, 1}}};
    panel.rows.push_back(units);
    ChoiceRow refresh{L"Read every", {}, -1};
    for (const int ms : kRefreshMs) {
        if (ms == preferences.refreshMs)
            refresh.chosen = static_cast<int>(refresh.options.size());
        refresh.options.push_back({intervalText(ms), {Action::Kind::eSetRefresh, {}, ms}});
    }
    panel.rows.push_back(refresh);

    std::size_t count = 0;
    for (const SettingsStore& store : stores) {
        panel.rows.push_back(HeadingRow{store.label, store.path, true});
        for (const SettingsSection& section : store.sections) {
            panel.rows.push_back(NoteRow{L"[" + section.name + L"]"});
            for (const Setting& setting : section.settings)
                panel.rows.push_back(FactRow{setting.name, textOr(setting.value, L"empty")});
            count += section.settings.size();
        }
        if (store.sections.empty())
            panel.rows.push_back(
                NoteRow{store.present ? L"Nothing is set" : L"Nothing has been saved yet"});
    }
    panel.fact = countText(count, L"value", L"values");
    return panel;
}

Panel systemPanel(const SystemFacts& system)
{
    Panel panel{L"system", L"System", {}, {}};
    panel.fact = textOr(system.computer, L"without a name");
    panel.rows.push_back(FactRow{L"Computer", textOr(system.computer, L"without a name")});
    panel.rows.push_back(FactRow{L"System", textOr(system.version, L"unknown")});
    panel.rows.push_back(FactRow{L"Graphics", textOr(system.driver, L"not started")});
    panel.rows.push_back(FactRow{L"Program", system.programName + L" \u00b7 process " +
                                                 decimal(static_cast<int>(system.process))});
    panel.rows.push_back(FactRow{L"Folder", system.programFolder, true});
    panel.rows.push_back(
        FactRow{L"Heap", system.memoryShort ? L"waits for memory" : L"has the memory it asks for"});
    panel.rows.push_back(FactRow{L"Debug heap", system.debugHeap ? L"on for new heaps" : L"off"});
    return panel;
}

std::vector<Panel> makePanels(const BoardData& data, const Preferences& preferences)
{
    std::vector<Panel> panels{processorsPanel(data.processors, preferences),
                              memoryPanel(data.memory, preferences),
                              monitorsPanel(data.monitors),
                              drivesPanel(data.volumes.drives, preferences.units),
                              networkPanel(data.volumes.network),
                              foldersPanel(data.volumes.folders),
                              settingsPanel(data.settings, preferences),
                              systemPanel(data.system),
                              serialPanel(data.serial, preferences),
                              midiPanel(data.midi),
                              computePanel(data.volumes.compute)};
    const std::vector<Text>& order = preferences.order;
    std::stable_sort(panels.begin(), panels.end(), [&](const Panel& a, const Panel& b) {
        return std::find(order.begin(), order.end(), a.key) <
               std::find(order.begin(), order.end(), b.key);
    });
    return panels;
}

std::vector<Text> movedOrder(const std::vector<Panel>& panels, int from, int to)
{
    std::vector<Text> keys;
    for (const Panel& panel : panels)
        keys.push_back(panel.key);
    const int count = static_cast<int>(keys.size());
    if (from < 0 || to < 0 || from >= count || to >= count)
        return keys;
    const Text moved = keys[static_cast<std::size_t>(from)];
    keys.erase(keys.begin() + from);
    keys.insert(keys.begin() + to, moved);
    return keys;
}

} // namespace Quay
