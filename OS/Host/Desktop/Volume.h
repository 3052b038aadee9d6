#pragma once

#include "OS/Host/Desktop/MountTable.h"

#include <OS/Files/iDiskDrive.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OSInternal {

/// A mounted volume as people know it, made of what the mount table, the devices and the desktop's
/// network folder tell. A value; bytes as the kernel has them.
struct Volume
{
    std::string id_;         ///< see iDiskDrive::getID
    std::string path_;       ///< without a trailing "/"; "/" the root
    std::string name_;       ///< its label, else the last part of its path
    std::string fileSystem_; ///< the kernel's name, or the scheme of a volume of the desktop's
    std::string address_;    ///< of a network volume, such as "smb://server/share"; taken
                             ///< literally, nothing in it is percent-encoded
    iDiskDrive::eType type_ = iDiskDrive::eFixed;
    bool readOnly_ = false;
    bool byDesktop_ = false; ///< mounted by the desktop's volume service
    bool isSystems_ = false; ///< of the system's own making: not listed
    unsigned int major_ = 0;
    unsigned int minor_ = 0;
};

/// Where volumes are looked for.
struct VolumeSources
{
    std::string hostRoot_;      ///< goes before "/proc/self/mountinfo", "/sys", "/dev"; for tests
    std::string desktopFolder_; ///< where the volume service shows its mounts; empty: nowhere

    /// This process's: $XDG_RUNTIME_DIR/gvfs, or $HOME/.gvfs where there is no such variable.
    static VolumeSources ofProcess();
};

/// The volumes that a user would name, ordered by path, each device once.
///
/// Left out are the kernel's own file systems, what lies below its folders, the boot partitions,
/// images of installed programs, single files that are mounted over others, and further places
/// where a device that is listed is seen (the root's place wins, then the whole device's, then the
/// shortest path). A network volume is listed at every place, since it is asked for by address.
///
/// Lists the desktop's network folder, which its service answers from memory; touches no volume.
/// @return nothing when the mount table cannot be read
std::optional<std::vector<Volume>> readVolumes(const VolumeSources& sources);

/// The same from a table that was read before.
std::vector<Volume> volumesOf(const MountTable& table, const VolumeSources& sources);

/// The volume that a path lies on, be it listed or not.
/// @param path absolute, without links, "." and ".."
std::optional<Volume> volumeHolding(std::string_view path, const VolumeSources& sources);

/// Whether a volume is still where it was.
bool isStillMounted(const Volume& volume, const VolumeSources& sources);

} // namespace OSInternal
