#pragma once

#include "Model/BoardData.h"
#include "Model/ProcessorTimes.h"

#include <string>

namespace Quay {

/// Takes the readings that change from second to second. Remembers the processors' times between
/// two calls. Used on one thread.
class Meters
{
public:
    /// Adds a reading of the processors and the memory to their histories.
    void read(BoardData& data);

private:
    std::vector<ProcessorTimes> before_;
};

/// Adds the loads between two readings to the histories.
void addLoads(Processors& processors, const std::vector<ProcessorTimes>& before,
              const std::vector<ProcessorTimes>& after);

/// Belongs to the thread of the event loop, like the next two.
std::vector<Monitor> gatherMonitors();
/// Both scopes. Nobody may change the settings meanwhile.
std::vector<SettingsStore> gatherSettings();
SystemFacts gatherSystem();

/// The ports that are there now; what is watched stays as it was. From any thread.
void gatherSerialPorts(SerialPorts& serial);

/// The devices that are there now; what is watched stays as it was. From any thread.
void gatherMidi(MidiDevices& midi);

/// From any thread; may wait for volumes that do not answer.
///
/// @param before what was found last: whether a folder is writable, which is tried with a file, is
/// asked again only where a folder has come or gone; what computes is asked once
Volumes gatherVolumes(const Volumes& before);

/// The start of a file, at most a megabyte; empty when it cannot be read.
std::string readText(const Text& path);

} // namespace Quay
