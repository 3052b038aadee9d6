#pragma once

#include "Model/BoardData.h"
#include "Model/Preferences.h"
#include "View/Panel.h"

#include <vector>

namespace Quay {

/// All panels, in the order that the user has given them.
std::vector<Panel> makePanels(const BoardData& data, const Preferences& preferences);

Panel processorsPanel(const Processors& processors, const Preferences& preferences);
Panel memoryPanel(const Memory& memory, const Preferences& preferences);
Panel monitorsPanel(const std::vector<Monitor>& monitors);
Panel drivesPanel(const Drives& drives, Units units);
Panel networkPanel(const Network& network);
Panel foldersPanel(const std::vector<Folder>& folders);
Panel settingsPanel(const std::vector<SettingsStore>& stores, const Preferences& preferences);
Panel systemPanel(const SystemFacts& system);
Panel midiPanel(const MidiDevices& midi);
Panel computePanel(const Compute& compute);
Panel serialPanel(const SerialPorts& serial, const Preferences& preferences);

/// Moves a panel to the place of another one. @return the keys in their new order
std::vector<Text> movedOrder(const std::vector<Panel>& panels, int from, int to);

} // namespace Quay
