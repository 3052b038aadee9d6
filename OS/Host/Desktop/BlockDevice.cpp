#include "OS/Host/Desktop/BlockDevice.h"

#include "OS/Host/Desktop/MountTable.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace fs = std::filesystem;

namespace OSInternal {

namespace {

// Layers of encryption, volume groups and RAID below one mount.
constexpr int kMostLayers = 8;

std::string firstLine(const fs::path& file)
{
    std::ifstream stream(file);
    char line[64] = "";
    stream.getline(line, sizeof(line));
    return line;
}

fs::path resolved(const fs::path& link)
{
    std::error_code fault;
    fs::path result = fs::canonical(link, fault);
    return fault ? fs::path() : result;
}

// The folder of a device in /sys, its links followed; empty when there is none.
fs::path sysFolderOf(const MountEntry& entry, const std::string& hostRoot)
{
    const fs::path devices = hostRoot + "/sys/dev/block";
    if (entry.major_ != 0)
        return resolved(devices /
                        (std::to_string(entry.major_) + ":" + std::to_string(entry.minor_)));
    // Some file systems count their mounts under numbers of their own and name the device instead.
    if (!entry.source_.starts_with("/dev/"))
        return {};
    const fs::path node = resolved(hostRoot + entry.source_);
    if (node.empty())
        return {};
    return resolved(hostRoot + "/sys/class/block/" + node.filename().native());
}

iDiskDrive::eType typeOf(fs::path folder)
{
    std::error_code fault;
    // What lies at the bottom tells whether it can be pulled out.
    for (int layer = 0; layer < kMostLayers; ++layer) {
        if (fs::exists(folder / "partition", fault))
            folder = folder.parent_path();
        const fs::directory_iterator below(folder / "slaves", fault);
        if (fault || below == fs::directory_iterator())
            break;
        const fs::path next = resolved(below->path());
        if (next.empty())
            break;
        folder = next;
    }
    const std::string kind = firstLine(folder / "device/type");
    constexpr const char* kScsiOptical = "5";
    if (kind == kScsiOptical || folder.filename().native().starts_with("sr"))
        return iDiskDrive::eOptical;
    // A USB disk calls its medium fixed, and so does a memory card: the bus tells more.
    const bool isPlugged = folder.native().find("/usb") != std::string::npos || kind == "SD";
    return isPlugged || firstLine(folder / "removable") == "1" ? iDiskDrive::eRemovable
                                                               : iDiskDrive::eFixed;
}

int hexDigit(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    return c >= 'A' && c <= 'F' ? c - 'A' + 10 : -1;
}

// The device manager writes the bytes that it does not trust in a file name as "\x20".
std::string unescape(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        int value = 0;
        if (text.size() >= 4 && text.starts_with("\\x") && hexDigit(text[2]) >= 0 &&
            hexDigit(text[3]) >= 0)
            value = hexDigit(text[2]) * 16 + hexDigit(text[3]);
        result.push_back(value == 0 ? text[0] : static_cast<char>(value));
        text.remove_prefix(value == 0 ? 1 : 4);
    }
    return result;
}

// The name of the link in a folder of /dev/disk that points to a device.
std::string linkTo(const std::string& device, const std::string& folder)
{
    std::error_code fault;
    std::string found;
    for (fs::directory_iterator at(folder, fault), end; !fault && at != end; at.increment(fault)) {
        std::error_code noLink;
        const fs::path target = fs::read_symlink(at->path(), noLink);
        // Of several names always the same one.
        if (!noLink && target.filename() == device &&
            (found.empty() || at->path().filename().native() < found))
            found = at->path().filename();
    }
    return unescape(found);
}

} // namespace

BlockDevice readBlockDevice(const MountEntry& entry, const std::string& hostRoot)
{
    BlockDevice device;
    const fs::path folder = sysFolderOf(entry, hostRoot);
    if (folder.empty())
        return device;
    device.name_ = folder.filename();
    device.type_ = typeOf(folder);
    device.uuid_ = linkTo(device.name_, hostRoot + "/dev/disk/by-uuid");
    device.label_ = linkTo(device.name_, hostRoot + "/dev/disk/by-label");
    return device;
}

} // namespace OSInternal
