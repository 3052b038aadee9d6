#include "OS/Host/Desktop/Volume.h"

#include "OS/Host/Desktop/BlockDevice.h"
#include "OS/Host/Desktop/NetworkVolume.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <utility>

namespace fs = std::filesystem;

namespace OSInternal {

namespace {

constexpr unsigned int kLoopMajor = 7;
constexpr std::string_view kDesktopFileSystem = "fuse.gvfsd-fuse";

// Folders whose mounts are the system's own business, whatever is mounted there.
constexpr std::array<std::string_view, 10> kSystemFolders = {"/proc",
                                                             "/sys",
                                                             "/dev",
                                                             "/boot",
                                                             "/efi",
                                                             "/snap",
                                                             "/var/lib/snapd",
                                                             "/var/lib/docker",
                                                             "/var/lib/containers",
                                                             "/var/lib/lxcfs"};
// Images of installed programs.
constexpr std::array<std::string_view, 4> kImages = {"squashfs", "erofs", "cramfs", "romfs"};
// File systems without a device of the kernel's that hold files of people.
constexpr std::array<std::string_view, 11> kWithoutDevice = {
    "zfs",    "btrfs", "bcachefs", "9p",    "virtiofs", "vboxsf",
    "prl_fs", "drvfs", "wslfs",    "ubifs", "fuse"};
// Those in the user's own programs that do not.
constexpr std::array<std::string_view, 5> kSystemFuse = {
    kDesktopFileSystem, "fuse.portal", "fuse.lxcfs", "fuse.snapfuse", "fuse.squashfuse"};

template <std::size_t N>
bool isOneOf(std::string_view text, const std::array<std::string_view, N>& all)
{
    return std::find(all.begin(), all.end(), text) != all.end();
}

bool isInMemory(const MountEntry& entry)
{
    return entry.fileSystem_ == "tmpfs" || entry.fileSystem_ == "ramfs";
}

bool isInSystemFolder(std::string_view path)
{
    // What is plugged in appears below /run/media on some systems.
    if (isWithin(path, "/run"))
        return !isWithin(path, "/run/media");
    return path.starts_with("/tmp/.mount_") || // an application image that runs
           std::any_of(kSystemFolders.begin(), kSystemFolders.end(),
                       [&](std::string_view folder) { return isWithin(path, folder); });
}

// A file mounted over another, as containers do with their settings. Only mounts of a part of a
// local device can be one.
bool isSingleFile(const MountEntry& entry, const VolumeSources& sources)
{
    if (entry.root_ == "/" || entry.major_ == 0)
        return false;
    std::error_code fault;
    const fs::file_status status = fs::status(sources.hostRoot_ + entry.path_, fault);
    return fs::exists(status) && !fs::is_directory(status);
}

bool isSystems(const MountEntry& entry, const VolumeSources& sources)
{
    if (entry.path_ == "/" || isNetworkMount(entry))
        return false;
    if (isInSystemFolder(entry.path_) || isOneOf(entry.fileSystem_, kSystemFuse) ||
        entry.fileSystem_.ends_with(".AppImage"))
        return true;
    const bool isImage = entry.major_ == kLoopMajor && isOneOf(entry.fileSystem_, kImages);
    const bool hasDevice = entry.major_ != 0 || entry.source_.starts_with("/dev/");
    const bool holdsFiles = hasDevice || isInMemory(entry) ||
                            isOneOf(entry.fileSystem_, kWithoutDevice) ||
                            entry.fileSystem_.starts_with("fuse.");
    return isImage || !holdsFiles || isSingleFile(entry, sources);
}

iDiskDrive::eType typeOf(const MountEntry& entry, const BlockDevice& device)
{
    if (isNetworkMount(entry))
        return iDiskDrive::eNetwork;
    constexpr std::array<std::string_view, 3> kKernels = {"proc", "sysfs", "devtmpfs"};
    if (isInMemory(entry) || isOneOf(entry.fileSystem_, kKernels))
        return iDiskDrive::eMemory;
    return device.type_;
}

std::string lastPart(const std::string& path)
{
    return path == "/" ? path : path.substr(path.rfind('/') + 1);
}

std::string idOf(const MountEntry& entry, const BlockDevice& device, const std::string& address)
{
    if (!device.uuid_.empty())
        return device.uuid_;
    if (!address.empty())
        return address.starts_with("smb://") ? address.substr(4) : address;
    if (entry.source_ == "/dev/root" && !device.name_.empty()) // a name of the boot loader's
        return "/dev/" + device.name_;
    if (entry.source_.starts_with("/dev/"))
        return entry.source_;
    return entry.fileSystem_ + ":" + entry.path_;
}

Volume makeVolume(const MountEntry& entry, const VolumeSources& sources)
{
    const BlockDevice device = readBlockDevice(entry, sources.hostRoot_);
    Volume volume;
    if (isNetworkMount(entry))
        volume.address_ = addressOf(entry);
    volume.id_ = idOf(entry, device, volume.address_);
    volume.path_ = entry.path_;
    volume.name_ = device.label_.empty() ? lastPart(entry.path_) : device.label_;
    volume.fileSystem_ = entry.fileSystem_;
    volume.type_ = typeOf(entry, device);
    volume.readOnly_ = entry.readOnly_;
    volume.isSystems_ = isSystems(entry, sources);
    volume.major_ = entry.major_;
    volume.minor_ = entry.minor_;
    return volume;
}

// Which of two places of one device stands for it.
bool isBetterPlace(const MountEntry& a, const MountEntry& b)
{
    const auto rank = [](const MountEntry& entry) {
        return std::make_tuple(entry.path_ != "/", entry.root_ != "/", entry.path_.size());
    };
    return rank(a) != rank(b) ? rank(a) < rank(b) : a.path_ < b.path_;
}

std::optional<MountTable> readTable(const VolumeSources& sources)
{
    return MountTable::read(sources.hostRoot_ + "/proc/self/mountinfo");
}

const MountEntry* desktopMount(const MountTable& table, const VolumeSources& sources)
{
    for (const MountEntry& entry : table.entries()) {
        if (entry.fileSystem_ == kDesktopFileSystem && entry.path_ == sources.desktopFolder_)
            return &entry;
    }
    return nullptr;
}

void appendDesktopVolumes(const MountTable& table, const VolumeSources& sources,
                          std::vector<Volume>& volumes)
{
    const MountEntry* folder = desktopMount(table, sources);
    if (!folder)
        return;
    std::error_code fault;
    for (fs::directory_iterator at(sources.hostRoot_ + folder->path_, fault), end;
         !fault && at != end; at.increment(fault)) {
        const std::string folderName = at->path().filename();
        const std::optional<DesktopShare> share = parseDesktopShare(folderName);
        if (!share)
            continue;
        Volume volume;
        volume.address_ = share->address_;
        volume.id_ = share->scheme_ == "smb" ? share->address_.substr(4) : share->address_;
        volume.path_ = folder->path_ + "/" + folderName;
        volume.name_ = share->name_;
        volume.fileSystem_ = share->scheme_;
        volume.type_ = iDiskDrive::eNetwork;
        volume.readOnly_ = folder->readOnly_;
        volume.byDesktop_ = true;
        volumes.push_back(std::move(volume));
    }
}

} // namespace

VolumeSources VolumeSources::ofProcess()
{
    VolumeSources sources;
    const char* runtime = std::getenv("XDG_RUNTIME_DIR");
    const char* home = std::getenv("HOME");
    if (runtime && *runtime)
        sources.desktopFolder_ = std::string(runtime) + "/gvfs";
    else if (home && *home)
        sources.desktopFolder_ = std::string(home) + "/.gvfs";
    return sources;
}

std::vector<Volume> volumesOf(const MountTable& table, const VolumeSources& sources)
{
    std::vector<const MountEntry*> chosen;
    std::map<std::pair<unsigned int, unsigned int>, const MountEntry*> byDevice;
    for (const MountEntry& entry : table.entries()) {
        if (isSystems(entry, sources))
            continue;
        if (isNetworkMount(entry)) {
            chosen.push_back(&entry);
            continue;
        }
        const auto [known, isNew] = byDevice.try_emplace({entry.major_, entry.minor_}, &entry);
        if (!isNew && isBetterPlace(entry, *known->second))
            known->second = &entry;
    }
    for (const auto& [device, entry] : byDevice)
        chosen.push_back(entry);
    std::vector<Volume> volumes;
    for (const MountEntry* entry : chosen)
        volumes.push_back(makeVolume(*entry, sources));
    appendDesktopVolumes(table, sources, volumes);
    std::stable_sort(volumes.begin(), volumes.end(),
                     [](const Volume& a, const Volume& b) { return a.path_ < b.path_; });
    return volumes;
}

std::optional<std::vector<Volume>> readVolumes(const VolumeSources& sources)
{
    const std::optional<MountTable> table = readTable(sources);
    if (!table)
        return {};
    return volumesOf(*table, sources);
}

std::optional<Volume> volumeHolding(std::string_view path, const VolumeSources& sources)
{
    const std::optional<MountTable> table = readTable(sources);
    if (!table)
        return {};
    std::vector<Volume> shares;
    appendDesktopVolumes(*table, sources, shares);
    for (Volume& share : shares) {
        if (isWithin(path, share.path_))
            return std::move(share);
    }
    const MountEntry* entry = table->holding(path);
    if (!entry)
        return {};
    return makeVolume(*entry, sources);
}

bool isStillMounted(const Volume& volume, const VolumeSources& sources)
{
    const std::optional<MountTable> table = readTable(sources);
    if (!table)
        return false;
    if (volume.byDesktop_) {
        std::vector<Volume> shares;
        appendDesktopVolumes(*table, sources, shares);
        return std::any_of(shares.begin(), shares.end(),
                           [&](const Volume& share) { return share.path_ == volume.path_; });
    }
    const MountEntry* entry = table->holding(volume.path_);
    return entry && entry->path_ == volume.path_ && entry->major_ == volume.major_ &&
           entry->minor_ == volume.minor_;
}

} // namespace OSInternal
