#include "OS/Mac/Files/DiskDrive.h"

#include "OS/Mac/Core/PathText.h"

#include <sys/statvfs.h>
#include <utility>

namespace {

struct Space
{
    std::uint64_t total_ = 0;
    std::uint64_t free_ = 0;
};

// A network volume whose server is silent holds this call until the kernel gives up.
Space spaceOf(const OSInternal::Volume& volume, const OSInternal::VolumeSources& sources)
{
    struct statvfs info;
    if (!isStillMounted(volume, sources) || statvfs(volume.path_.c_str(), &info) != 0)
        return {};
    const std::uint64_t unit = info.f_frsize;
    return {info.f_blocks * unit, info.f_bavail * unit};
}

} // namespace

DiskDrive::DiskDrive(OSInternal::Volume volume, OSInternal::VolumeSources sources)
    : volume_(std::move(volume)), sources_(std::move(sources))
{
}

LightweightString<wchar_t> DiskDrive::getID() const
{
    return OSInternal::textFromSystem(volume_.id_);
}

LightweightString<wchar_t> DiskDrive::getPath() const
{
    LightweightString<wchar_t> path = OSInternal::textFromSystem(volume_.path_);
    return path.endsWith(L'/') ? path : path + L"/";
}

LightweightString<wchar_t> DiskDrive::getName() const
{
    return OSInternal::textFromSystem(volume_.name_);
}

LightweightString<wchar_t> DiskDrive::getFileSystem() const
{
    return OSInternal::textFromSystem(volume_.fileSystem_);
}

iDiskDrive::eType DiskDrive::getType() const
{
    return volume_.type_;
}

bool DiskDrive::isReadOnly() const
{
    return volume_.readOnly_;
}

std::uint64_t DiskDrive::getTotalSpace() const
{
    return spaceOf(volume_, sources_).total_;
}

std::uint64_t DiskDrive::getFreeSpace() const
{
    return spaceOf(volume_, sources_).free_;
}
