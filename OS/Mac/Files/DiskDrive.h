#pragma once

#include "OS/Host/Desktop/Volume.h"

#include <OS/Files/iDiskDrive.h>

/// iDiskDrive of a volume of the mount table. Never changes; asks the table before it tells the
/// space, since the folder of a volume that is gone would tell that of the volume below it.
class DiskDrive final : public iDiskDrive
{
public:
    DiskDrive(OSInternal::Volume volume, OSInternal::VolumeSources sources);

    LightweightString<wchar_t> getID() const override;
    LightweightString<wchar_t> getPath() const override;
    LightweightString<wchar_t> getName() const override;
    LightweightString<wchar_t> getFileSystem() const override;
    eType getType() const override;
    bool isReadOnly() const override;
    std::uint64_t getTotalSpace() const override;
    std::uint64_t getFreeSpace() const override;

private:
    const OSInternal::Volume volume_;
    const OSInternal::VolumeSources sources_;
};
