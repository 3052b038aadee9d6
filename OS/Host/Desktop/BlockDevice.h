#pragma once

#include <OS/Files/iDiskDrive.h>

#include <string>

namespace OSInternal {

struct MountEntry;

/// What the kernel and the device manager tell about the device under a mount. Read from /sys and
/// /dev only: neither wakes the device.
struct BlockDevice
{
    std::string name_; ///< the kernel's, such as "sda1"; empty when there is no device
    std::string uuid_; ///< of its file system; empty when it has none or no device manager runs
    std::string label_;
    iDiskDrive::eType type_ = iDiskDrive::eFixed; ///< eFixed, eRemovable or eOptical
};

/// @param hostRoot goes before "/sys" and "/dev", for tests
BlockDevice readBlockDevice(const MountEntry& entry, const std::string& hostRoot);

} // namespace OSInternal
