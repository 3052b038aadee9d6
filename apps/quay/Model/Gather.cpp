#include "Model/Gather.h"

#include "Model/SettingsFile.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>
#include <OS/Devices/iSerialPortDetails.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iMountManager.h>
#include <OS/Files/iProcessManager.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Shared/iHeap.h>
#include <OS/System/iSystemInfo.h>

#include <algorithm>

namespace Quay {

namespace {

constexpr std::size_t kLongestText = 1 << 20;

constexpr struct
{
    iShell::eFolderLocation location;
    const wchar_t* label;
} kFolders[] = {
    {iShell::eHome, L"Home"},
    {iShell::eDesktop, L"Desktop"},
    {iShell::eDocuments, L"Documents"},
    {iShell::eMovies, L"Movies"},
    {iShell::ePictures, L"Pictures"},
    {iShell::eFonts, L"Fonts"},
    {iShell::eTemporary, L"Temporary"},
    {iShell::eApplicationData, L"Application data"},
    {iShell::ePreferences, L"Preferences"},
    {iShell::eResources, L"Resources"},
};

Text wide(const LightweightString<char>& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), static_cast<int>(text.size()));
}

std::vector<Folder> gatherFolders(const std::vector<Folder>& before)
{
    iFileManager* files = OS()->fileMgr();
    std::vector<Folder> folders;
    for (const auto& known : kFolders) {
        Folder folder;
        folder.label = known.label;
        folder.path = OS()->shell()->getFolderLocation(known.location);
        folder.present = !folder.path.empty() && files->fileExists(folder.path);
        const auto old = std::find_if(before.begin(), before.end(), [&](const Folder& f) {
            return f.path == folder.path && f.present == folder.present;
        });
        if (folder.present)
            folder.writable = old != before.end() ? old->writable : files->isWritable(folder.path);
        folders.push_back(folder);
    }
    return folders;
}

Drives gatherDrives()
{
    Drives result;
    std::vector<Tq::Ptr<iDiskDrive>> found;
    result.read = OS()->fileMgr()->getDiskDrives(iDiskDrive::eAny, found);
    for (const Tq::Ptr<iDiskDrive>& drive : found)
        if (drive)
            result.drives.push_back({drive->getName(), drive->getPath(), drive->getFileSystem(),
                                     drive->getType(), drive->isReadOnly(), drive->getTotalSpace(),
                                     drive->getFreeSpace()});
    return result;
}

Network gatherNetwork()
{
    Network network;
    std::vector<Text> servers;
    OS()->fileMgr()->getNetworkServers(servers);
    for (const Text& name : servers) {
        Server& server = network.servers.emplace_back();
        server.name = name;
        std::vector<iFileManager::Share> shares;
        OS()->fileMgr()->getNetworkShares(name, shares);
        for (const iFileManager::Share& share : shares)
            server.shares.push_back({share.name_, share.path_});
    }
    std::vector<iMountManager::Mount> mounts;
    OS()->mountMgr()->getMounts(mounts);
    for (const iMountManager::Mount& mount : mounts)
        network.mounts.push_back({mount.address_, mount.path_, mount.name_, mount.byDesktop_});
    return network;
}

SettingsStore gatherStore(iSettings::eType type)
{
    const bool user = type == iSettings::eUser;
    SettingsStore store;
    store.label = user ? L"User" : L"Global";
    const Text folder = OS()->shell()->getFolderLocation(iShell::ePreferences);
    if (!folder.empty())
        store.path = folder + (user ? L"UserSettings.txt" : L"GlobalSettings.txt");
    store.present = !store.path.empty() && OS()->fileMgr()->fileExists(store.path);

    // The store has no list of its sections, but its file has.
    const std::string text = store.present ? readText(store.path) : std::string();
    std::vector<LightweightString<char>> names = sectionNames(text);
    for (const char* own : {"Board", "Window"})
        if (user && std::find(names.begin(), names.end(), own) == names.end())
            names.push_back(own);
    const Tq::Ptr<iSettings> settings = OS()->shell()->getSettings(type);
    for (const LightweightString<char>& name : names) {
        SettingsSection section;
        section.name = wide(name);
        std::vector<iSettings::NameValuePair> pairs;
        if (settings && settings->getMultipleValues(pairs, name.c_str()))
            for (const iSettings::NameValuePair& pair : pairs)
                section.settings.push_back({wide(pair.name), wide(pair.value)});
        else // written by another program since
            section.settings = sectionValues(text, name.view());
        if (!section.settings.empty())
            store.sections.push_back(section);
    }
    return store;
}

} // namespace

std::string readText(const Text& path)
{
    const Tq::Ptr<iFile> file = OS()->fileMgr()->openFile(
        path, iFile::eAccessRead, iFile::eOpenExisting, iFile::eShareRead, 0);
    std::string text;
    char buffer[16384];
    while (file && text.size() < kLongestText) {
        const unsigned int length = file->read(buffer, sizeof buffer);
        if (length == 0 || length > sizeof buffer)
            break;
        text.append(buffer, length);
    }
    return text;
}

void addLoads(Processors& processors, const std::vector<ProcessorTimes>& before,
              const std::vector<ProcessorTimes>& after)
{
    if (before.empty() || after.empty())
        return;
    processors.all.add(loadBetween(before[0], after[0]));
    processors.each.resize(std::max(processors.each.size(), after.size() - 1));
    for (std::size_t i = 0; i < processors.each.size(); ++i) {
        const bool known = i + 1 < before.size() && i + 1 < after.size();
        processors.each[i].add(known ? loadBetween(before[i + 1], after[i + 1]) : 0.0);
    }
}

void Meters::read(BoardData& data)
{
    iSystemInfo* info = OS()->systemInfo();
    data.processors.configured = info->getNumberOfProcessors();
    std::vector<ProcessorTimes> now = parseProcessorTimes(readText(L"/proc/stat"));
    addLoads(data.processors, before_, now);
    before_ = std::move(now);

    const iSystemInfo::MemoryInfo memory = info->getMemoryInfo();
    data.memory.total = memory.totalPhysical_;
    data.memory.available = memory.availablePhysical_;
    data.memory.wired = memory.wired_;
    data.memory.resident = memory.processResident_;
    data.memory.mapped = memory.processVirtual_;
    data.memory.used.add(data.memory.usedPart());
    ++data.readings;
}

std::vector<Monitor> gatherMonitors()
{
    std::vector<iSystemInfo::MonitorInfo> infos;
    OS()->systemInfo()->getMonitorInfo(infos);
    std::vector<Monitor> monitors;
    for (const iSystemInfo::MonitorInfo& info : infos)
        monitors.push_back({info.name_, info.fullRect_, info.desktopRect_, info.physicalSizeMm_,
                            info.scale_, info.refreshRateHz_, info.bitsPerPixel_, info.primary_});
    return monitors;
}

std::vector<SettingsStore> gatherSettings()
{
    return {gatherStore(iSettings::eUser), gatherStore(iSettings::eGlobal)};
}

SystemFacts gatherSystem()
{
    SystemFacts facts;
    facts.application = OS()->fileMgr()->getAppDescription();
    facts.computer = OS()->systemInfo()->getComputerName();
    facts.version = OS()->systemInfo()->getOSVersion();
    facts.driver = OS()->systemInfo()->getGraphicsDriverVendor();
    facts.programFolder = OS()->fileMgr()->getAppPath();
    facts.programName = OS()->fileMgr()->getAppName();
    facts.process = OS()->processMgr()->getCurrentProcessID();
    facts.memoryShort = OS()->heap()->outOfMemory();
    const Tq::Ptr<iSettings> global = OS()->shell()->getSettings(iSettings::eGlobal);
    facts.debugHeap = global && global->getValue("DebugHeap", "", nullptr) == "1";
    return facts;
}

namespace {

Compute gatherCompute()
{
    std::vector<GPUComputeDevice> found;
    OS()->mediaServices()->getGPUComputeDevices(found);
    Compute compute{true, {}};
    for (const GPUComputeDevice& device : found)
        compute.devices.push_back({device.platform_, device.device_, device.version_, device.gpu_,
                                   device.sharing_, device.chosen_, device.reason_});
    return compute;
}

} // namespace

Volumes gatherVolumes(const Volumes& before)
{
    return {gatherDrives(), gatherNetwork(), gatherFolders(before.folders),
            before.compute.read ? before.compute : gatherCompute()};
}

void gatherMidi(MidiDevices& midi)
{
    midi.inputs.clear();
    midi.outputs.clear();
    auto* const devices = dynamic_cast<iMIDIDeviceInfo*>(OS()->midi());
    if (!devices)
        return;
    midi.services = OS()->utils()->fromUTF8(devices->getServices().c_str(), -1);
    MIDIDeviceInfo info;
    for (unsigned int i = 0; devices->getInputDevInfo(i, info); ++i)
        midi.inputs.push_back({info.name_, info.manufacturer_, info.isVirtual_});
    for (unsigned int i = 0; devices->getOutputDevInfo(i, info); ++i)
        midi.outputs.push_back({info.name_, info.manufacturer_, info.isVirtual_});
}

void gatherSerialPorts(SerialPorts& serial)
{
    serial.ports.clear();
    const auto* details = dynamic_cast<iSerialPortDetails*>(OS()->hardwareMgr());
    std::vector<iSerialPortDetails::Details> found;
    serial.read = details && details->getSerialPorts(found);
    for (const iSerialPortDetails::Details& port : found)
        serial.ports.push_back({port.path_, port.product_, port.serialNumber_});
}

} // namespace Quay
