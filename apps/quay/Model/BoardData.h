#pragma once

#include "Model/History.h"
#include "Model/Text.h"

#include <OS/Files/iDiskDrive.h>

#include <cstdint>
#include <vector>

namespace Quay {

// What the board shows, as plain data: it can be gathered from the library or made up by a test.

struct Processors
{
    unsigned int configured = 0;
    History all;
    std::vector<History> each; ///< by the processor's number
};

struct Memory
{
    std::uint64_t total = 0;
    std::uint64_t available = 0;
    std::uint64_t wired = 0;
    std::uint64_t resident = 0; ///< of this program
    std::uint64_t mapped = 0;   ///< by this program
    History used;

    double usedPart() const
    {
        return total == 0 || available > total
                   ? 0.0
                   : 1.0 - static_cast<double>(available) / static_cast<double>(total);
    }
};

struct Monitor
{
    Text name;
    Rect full;    ///< on the desktop, logical pixels
    Rect desktop; ///< what panels and docks leave
    Point sizeMm; ///< (0, 0): unknown
    double scale = 1.0;
    double refreshHz = 0.0; ///< 0: unknown
    int bitsPerPixel = 0;
    bool primary = false;
};

struct Drive
{
    Text name;
    Text path;
    Text fileSystem;
    iDiskDrive::eType type = iDiskDrive::eFixed;
    bool readOnly = false;
    std::uint64_t total = 0;
    std::uint64_t free = 0;
};

struct Drives
{
    bool read = false; ///< false: the system did not tell
    std::vector<Drive> drives;
};

struct Share
{
    Text name;
    Text path;
};

struct Server
{
    Text name;
    std::vector<Share> shares;
};

struct Mount
{
    Text address;
    Text path;
    Text name;
    bool byDesktop = false;
};

struct Network
{
    std::vector<Server> servers;
    std::vector<Mount> mounts;
};

struct Folder
{
    Text label;
    Text path; ///< empty: the system has none
    bool present = false;
    bool writable = false;
};

struct Setting
{
    Text name;
    Text value;
};

struct SettingsSection
{
    Text name;
    std::vector<Setting> settings;
};

/// The settings of one scope.
struct SettingsStore
{
    Text label;
    Text path;
    bool present = false; ///< the file is there
    std::vector<SettingsSection> sections;
};

struct SystemFacts
{
    Text application;
    Text computer;
    Text version;
    Text driver; ///< of the graphics; empty until it has been started
    Text programFolder;
    Text programName;
    unsigned int process = 0;
    bool memoryShort = false; ///< the heap is waiting for memory
    bool debugHeap = false;   ///< asked for by the global settings, for heaps made later
};

struct SerialPort
{
    Text path;
    Text product; ///< of the USB device that it belongs to; empty without one
    Text serialNumber;
};

/// The port whose bytes are shown.
struct SerialMonitor
{
    static constexpr std::size_t kKept = 64;

    Text path; ///< empty: none
    bool open = false;
    bool gone = false; ///< it was open, and is not there any more
    std::uint64_t received = 0;
    std::vector<std::uint8_t> latest; ///< the last kKept

    /// Adds `count` bytes, of which only the last need be given.
    void add(std::uint64_t count, const std::vector<std::uint8_t>& last);
};

struct SerialPorts
{
    bool read = false; ///< false: the system did not tell
    std::vector<SerialPort> ports;
    SerialMonitor monitor;
};

struct MidiDevice
{
    Text name;
    Text maker; ///< empty when not known
    bool isVirtual = false;
};

/// One that came: a short one by its bytes, or a piece of a long one.
struct MidiMessage
{
    std::uint32_t word = 0;     ///< of a short one, its first byte lowest
    std::uint32_t longSize = 0; ///< 0: a short one
};

/// The input whose messages are shown.
struct MidiMonitor
{
    static constexpr std::size_t kKept = 4;

    Text name; ///< empty: none
    bool open = false;
    bool gone = false; ///< it was open, and is not there any more
    std::uint64_t received = 0;
    std::vector<MidiMessage> latest; ///< the last kKept

    /// Adds `count` messages, of which only the last need be given.
    void add(std::uint64_t count, const std::vector<MidiMessage>& last);
};

struct MidiDevices
{
    Text services; ///< that the library uses, such as "ALSA"; "none" without any
    std::vector<MidiDevice> inputs;
    std::vector<MidiDevice> outputs;
    MidiMonitor monitor;
};

/// What could compute, and whether a compute context made now would be on it.
struct ComputeDevice
{
    Text platform; ///< the runtime that offers it
    Text name;
    Text version;
    bool gpu = false;
    bool sharing = false; ///< with GL
    bool chosen = false;
    Text reason; ///< why it is not chosen
};

struct Compute
{
    bool read = false;
    std::vector<ComputeDevice> devices;
};

/// What may take its time, and is asked for on another thread: volumes may not answer, runtimes
/// compile.
struct Volumes
{
    Drives drives;
    Network network;
    std::vector<Folder> folders;
    Compute compute;
};

struct BoardData
{
    Processors processors;
    Memory memory;
    std::vector<Monitor> monitors;
    Volumes volumes;
    std::vector<SettingsStore> settings;
    SystemFacts system;
    SerialPorts serial;
    MidiDevices midi;
    int readings = 0;
};

} // namespace Quay
