#include "Gather.h"

#include "PrintedLines.h"

#include <OS.h>
#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iMIDI.h>
#include <OS/Devices/iMIDIDeviceInfo.h>
#include <OS/Devices/iSerialPortDetails.h>
#include <OS/Files/iFileManager.h>
#include <OS/Files/iShell.h>
#include <OS/Media/iMediaServices.h>
#include <OS/System/iSystemInfo.h>
#include <OS/Windowing/iWindowManager.h>

#include <cstdio>
#include <cstdlib>
#include <sys/utsname.h>

namespace OsInfo {

namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? value : "";
}

// The user's name is nobody's business.
std::string withoutHome(std::string path)
{
    const std::string home = utf8(OS()->shell()->getFolderLocation(iShell::eHome));
    if (home.size() > 1 && path.starts_with(home))
        path.replace(0, home.size(), "~/");
    return path;
}

std::string sizeText(int width, int height)
{
    return std::to_string(width) + " x " + std::to_string(height);
}

Section versions()
{
    utsname kernel{};
    uname(&kernel);
    return {"versions",
            "Versions",
            Section::eOne,
            {{{"library", "Library", std::string(OS_INFO_VERSION)},
              {"system", "System", utf8(OS()->systemInfo()->getOSVersion())},
              {"kernel", "Kernel",
               std::string(kernel.sysname) + ' ' + kernel.release + ' ' + kernel.machine},
              {"desktop", "Desktop", environment("XDG_CURRENT_DESKTOP")},
              {"session", "Session", environment("XDG_SESSION_TYPE")},
              {"language", "Language", environment("LANG")}}}};
}

// The first line of a list of the system's that begins so, behind its colon.
std::string lineOf(const LightweightString<wchar_t>& path, const std::string& name)
{
    const Tq::Ptr<iFile> file = OS()->fileMgr()->openFile(
        path, iFile::eAccessRead, iFile::eOpenExisting, iFile::eShareRead, 0);
    char text[4096];
    const unsigned int length = file ? file->read(text, sizeof text) : 0;
    const std::string_view all(text, length <= sizeof text ? length : 0);
    const std::size_t at = all.find(name);
    if (at == all.npos)
        return {};
    const std::string_view line = all.substr(at, all.find('\n', at) - at);
    const std::size_t value = line.find(": ");
    return std::string(value == line.npos ? "" : line.substr(value + 2));
}

Section processors()
{
    return {"processors",
            "Processors",
            Section::eOne,
            {{{"count", "Count", std::int64_t{OS()->systemInfo()->getNumberOfProcessors()}},
              {"model", "Model", lineOf(L"/proc/cpuinfo", "model name")}}}};
}

Section memory()
{
    const iSystemInfo::MemoryInfo info = OS()->systemInfo()->getMemoryInfo();
    return {"memory",
            "Memory",
            Section::eOne,
            {{{"physicalBytes", "Physical", Bytes{info.totalPhysical_}},
              {"availableBytes", "Available", Bytes{info.availablePhysical_}},
              {"wiredBytes", "Wired", Bytes{info.wired_}},
              {"processResidentBytes", "Resident", Bytes{info.processResident_}},
              {"processVirtualBytes", "Mapped", Bytes{info.processVirtual_}}}}};
}

Section graphics()
{
    std::vector<iSystemInfo::GraphicsFact> facts;
    OS()->systemInfo()->getGraphicsReport(facts);
    Item item;
    for (const auto& fact : facts)
        item.push_back({"", fact.name_.c_str(), utf8(fact.value_)});
    return {"graphics", "Graphics", Section::eNamed, {item}};
}

Section monitors()
{
    std::vector<iSystemInfo::MonitorInfo> infos;
    OS()->systemInfo()->getMonitorInfo(infos);
    Section section{"monitors", "Monitors", Section::eMany, {}};
    for (const iSystemInfo::MonitorInfo& info : infos) {
        const Tq::Rectangle<int>& full = info.fullRect_;
        section.items.push_back(
            {{"name", "Name", utf8(info.name_)},
             {"size", "Size", sizeText(full.right - full.left, full.bottom - full.top)},
             {"left", "Left", std::int64_t{full.left}},
             {"top", "Top", std::int64_t{full.top}},
             {"scale", "Scale", info.scale_},
             {"refreshRateHz", "Rate, Hz", info.refreshRateHz_},
             {"millimetres", "Millimetres",
              sizeText(info.physicalSizeMm_.x, info.physicalSizeMm_.y)},
             {"bitsPerPixel", "Bits", std::int64_t{info.bitsPerPixel_}},
             {"primary", "Primary", info.primary_}});
    }
    return section;
}

Section computeDevices()
{
    std::vector<GPUComputeDevice> devices;
    OS()->mediaServices()->getGPUComputeDevices(devices);
    Section section{"compute", "Compute devices", Section::eMany, {}};
    for (const GPUComputeDevice& device : devices)
        section.items.push_back({{"device", "Device", utf8(device.device_)},
                                 {"platform", "Platform", utf8(device.platform_)},
                                 {"vendor", "Vendor", utf8(device.vendor_)},
                                 {"version", "Version", utf8(device.version_)},
                                 {"driver", "Driver", utf8(device.driver_)},
                                 {"gpu", "GPU", device.gpu_},
                                 {"sharing", "Can share with GL", device.sharing_},
                                 {"chosen", "Chosen", device.chosen_},
                                 {"reason", "Why not", utf8(device.reason_)}});
    return section;
}

Section midiDevices()
{
    Section section{"midi", "MIDI devices", Section::eMany, {}};
    auto* const devices = dynamic_cast<iMIDIDeviceInfo*>(OS()->midi());
    if (!devices)
        return section;
    const std::string services = devices->getServices().c_str();
    MIDIDeviceInfo info;
    for (const bool input : {true, false})
        for (unsigned int i = 0;
             input ? devices->getInputDevInfo(i, info) : devices->getOutputDevInfo(i, info); ++i)
            section.items.push_back(
                {{"name", "Name", utf8(info.name_)},
                 {"direction", "Direction", std::string(input ? "input" : "output")},
                 {"manufacturer", "Manufacturer", utf8(info.manufacturer_)},
                 {"virtual", "Virtual", info.isVirtual_},
                 {"services", "By", services}});
    OS()->midi()->deinitialise();
    return section;
}

// As others write it: "0403"; empty where there is none.
std::string usbNumber(std::uint16_t number)
{
    char text[8];
    std::snprintf(text, sizeof text, "%04x", static_cast<unsigned int>(number));
    return number == 0 ? "" : text;
}

// Without serial numbers: reports are pasted in public.
Section serialPorts()
{
    Section section{"serialPorts", "Serial ports", Section::eMany, {}};
    std::vector<iSerialPortDetails::Details> ports;
    if (const auto* known = dynamic_cast<iSerialPortDetails*>(OS()->hardwareMgr()))
        known->getSerialPorts(ports);
    for (const iSerialPortDetails::Details& port : ports)
        section.items.push_back({{"path", "Path", utf8(port.path_)},
                                 {"product", "USB product", utf8(port.product_)},
                                 {"manufacturer", "Manufacturer", utf8(port.manufacturer_)},
                                 {"vendorId", "Vendor", usbNumber(port.vendorID_)},
                                 {"productId", "Product", usbNumber(port.productID_)}});
    return section;
}

Section folders()
{
    static constexpr struct
    {
        iShell::eFolderLocation location;
        const char* key;
        const char* label;
    } kKnown[] = {
        {iShell::eHome, "home", "Home"},
        {iShell::eDesktop, "desktop", "Desktop"},
        {iShell::eDocuments, "documents", "Documents"},
        {iShell::eMovies, "movies", "Movies"},
        {iShell::ePictures, "pictures", "Pictures"},
        {iShell::eFonts, "fonts", "Fonts"},
        {iShell::eTemporary, "temporary", "Temporary"},
        {iShell::eApplicationData, "applicationData", "Application data"},
        {iShell::ePreferences, "preferences", "Preferences"},
        {iShell::eResources, "resources", "Resources"},
    };
    Item item;
    for (const auto& known : kKnown) {
        const auto path = OS()->shell()->getFolderLocation(known.location);
        const bool present = !path.empty() && OS()->fileMgr()->fileExists(path);
        item.push_back({known.key, known.label,
                        withoutHome(utf8(path)) + (present || path.empty() ? "" : " (missing)")});
    }
    return {"folders", "Folders", Section::eOne, {item}};
}

Section messages(const std::vector<std::string>& lines)
{
    Section section{"messages", "What the library printed", Section::eMany, {}};
    for (const std::string& line : lines)
        section.items.push_back({{"line", "", withoutHome(line)}});
    return section;
}

// In this order: graphics start the application object, without which there are no monitors, and
// GL, without which compute shares nothing.
constexpr Section (*kSubjects[])() = {versions,       processors,  memory,      graphics, monitors,
                                      computeDevices, midiDevices, serialPorts, folders};

} // namespace

Report gather()
{
    Report report;
    PrintedLines printed;
    for (const auto subject : kSubjects)
        report.push_back(subject());
    OS()->windowMgr()->shutdown();
    report.push_back(messages(printed.take()));
    return report;
}

} // namespace OsInfo
