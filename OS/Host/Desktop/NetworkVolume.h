#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace OSInternal {

struct MountEntry;

/// Whether a mount's files come from another computer.
bool isNetworkMount(const MountEntry& entry);

/// The address of a kernel mount of a network volume: "smb://server/share" with what is below the
/// share, "nfs://server/export", "sftp://user@server/folder". Taken literally: nothing is encoded.
std::string addressOf(const MountEntry& entry);

/// A network volume as the desktop's volume service names its folder:
/// "smb-share:server=nas,share=media,user=anna".
struct DesktopShare
{
    std::string scheme_;  ///< "smb"
    std::string address_; ///< "smb://anna@nas/media", literal
    std::string name_;    ///< the share, or the server where it has none
};

/// @return nothing for what is no network volume: cameras, archives, whole servers and the like
std::optional<DesktopShare> parseDesktopShare(std::string_view folderName);

} // namespace OSInternal
