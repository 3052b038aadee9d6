// Drives and network volumes: what iFileManager tells of the mounted ones.
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/DiskDrive.h"
#include "OS/Mac/Files/FileManager.h"
#include "OS/Mac/Files/NetworkAddress.h"
#include "OS/Mac/Files/NetworkPath.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <utility>

using OSInternal::NetworkAddress;
using OSInternal::Volume;
using OSInternal::VolumeSources;

namespace {

bool isOfType(const Volume& volume, iDiskDrive::eType type)
{
    return type == iDiskDrive::eAny || volume.type_ == type;
}

std::vector<Volume> drivesOf(iDiskDrive::eType type, const VolumeSources& sources)
{
    std::vector<Volume> volumes = OSInternal::readVolumes(sources).value_or(std::vector<Volume>());
    std::erase_if(volumes, [&](const Volume& volume) { return !isOfType(volume, type); });
    return volumes;
}

// The path without links, "." and ".."; empty when there is no such file.
std::string realPath(const LightweightString<wchar_t>& path)
{
    LightweightString<char> local = FileManager::TqtoOS(path);
    if (FileManager::isURI(local))
        local = OSInternal::resolveNetworkPath(local);
    char resolved[PATH_MAX];
    return !local.empty() && realpath(local.c_str(), resolved) ? resolved : "";
}

bool isBefore(const LightweightString<wchar_t>& a, const LightweightString<wchar_t>& b)
{
    const int order = a.compareNoCase(b.view());
    return order != 0 ? order < 0 : a < b;
}

std::string joined(const std::vector<std::string>& parts)
{
    std::string result;
    for (const std::string& part : parts)
        result += (result.empty() ? "" : "/") + part;
    return result.empty() ? "/" : result;
}

} // namespace

Tq::Ptr<iDiskDrive> FileManager::openDrive(const LightweightString<wchar_t>& path)
{
    const VolumeSources sources = VolumeSources::ofProcess();
    const std::string real = realPath(path);
    std::optional<Volume> volume;
    if (!real.empty())
        volume = OSInternal::volumeHolding(real, sources);
    if (!volume)
        return {};
    return new DiskDrive(*std::move(volume), sources);
}

Tq::Ptr<iDiskDrive> FileManager::openDriveByID(const LightweightString<wchar_t>& id)
{
    const VolumeSources sources = VolumeSources::ofProcess();
    for (Volume& volume : drivesOf(iDiskDrive::eAny, sources)) {
        if (OSInternal::textFromSystem(volume.id_) == id)
            return new DiskDrive(std::move(volume), sources);
    }
    return {};
}

unsigned int FileManager::getNumDiskDrives(iDiskDrive::eType type)
{
    return static_cast<unsigned int>(drivesOf(type, VolumeSources::ofProcess()).size());
}

bool FileManager::getDiskDrives(iDiskDrive::eType type, std::vector<Tq::Ptr<iDiskDrive>>& drives)
{
    const VolumeSources sources = VolumeSources::ofProcess();
    std::optional<std::vector<Volume>> volumes = OSInternal::readVolumes(sources);
    if (!volumes)
        return false;
    for (Volume& volume : *volumes) {
        if (isOfType(volume, type))
            drives.push_back(new DiskDrive(std::move(volume), sources));
    }
    return true;
}

bool FileManager::getNetworkServers(std::vector<LightweightString<wchar_t>>& servers)
{
    const auto volumes = OSInternal::readVolumes(VolumeSources::ofProcess());
    if (!volumes)
        return false;
    std::vector<LightweightString<wchar_t>> found;
    for (const Volume& volume : *volumes) {
        if (const auto address = NetworkAddress::parse(volume.address_))
            found.push_back(OSInternal::textFromSystem(address->server_));
    }
    std::sort(found.begin(), found.end(), isBefore);
    const auto end = std::unique(found.begin(), found.end(), [](const auto& a, const auto& b) {
        return a.equalsNoCase(b.view());
    });
    servers.insert(servers.end(), found.begin(), end);
    return true;
}

bool FileManager::getNetworkShares(const LightweightString<wchar_t>& server,
                                   std::vector<Share>& shares)
{
    const VolumeSources sources = VolumeSources::ofProcess();
    std::vector<Share> found;
    for (const Volume& volume : drivesOf(iDiskDrive::eNetwork, sources)) {
        const auto address = NetworkAddress::parse(volume.address_);
        if (address && OSInternal::textFromSystem(address->server_).equalsNoCase(server.view()))
            found.push_back({OSInternal::textFromSystem(joined(address->path_)),
                             OSInternal::textFromSystem(volume.path_ + "/")});
    }
    std::sort(found.begin(), found.end(), [](const Share& a, const Share& b) {
        return isBefore(a.name_, b.name_) || (a.name_ == b.name_ && a.path_ < b.path_);
    });
    shares.insert(shares.end(), found.begin(), found.end());
    return !found.empty();
}
