#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace OSInternal {

/// One line of the kernel's mount table, its escapes undone. Bytes as the kernel has them.
struct MountEntry
{
    int id_ = 0;
    int parentId_ = 0; ///< the mount that it stands on
    unsigned int major_ = 0;
    unsigned int minor_ = 0;
    std::string root_;       ///< which folder of the file system is seen here; "/" the whole
    std::string path_;       ///< where, without a trailing "/"; "/" the root
    std::string fileSystem_; ///< such as "ext4", "fuse.sshfs"
    std::string source_;     ///< what is mounted, such as "/dev/sda1"; may be empty
    bool readOnly_ = false;
};

/// The mounts that can be reached by their paths at one moment, as /proc/self/mountinfo tells them
/// (proc_pid_mountinfo(5)). A value; reading it touches no mounted volume, so a dead one cannot
/// block it.
class MountTable
{
public:
    /// @param path another file of the same form, for tests
    /// @return nothing when it cannot be read
    static std::optional<MountTable> read(const std::string& path = "/proc/self/mountinfo");
    /// The same from a text. Lines that are none of the form are left out, whatever they hold.
    static MountTable parse(std::string_view text);

    /// In the kernel's order, without the mounts that others are mounted over.
    const std::vector<MountEntry>& entries() const { return entries_; }
    /// The mount that a path lies on. @param path absolute, without links, "." and ".."
    /// @return null when there is none
    const MountEntry* holding(std::string_view path) const;

private:
    std::vector<MountEntry> entries_;
};

/// Whether a path is a folder or lies below it. @param folder without a trailing "/", or "/"
bool isWithin(std::string_view path, std::string_view folder);

} // namespace OSInternal
