#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Files/iShell.h>

#include <string_view>

/// Where the user's folders, and the application's own, lie: the environment, the user-dirs.dirs
/// file and the base directories of the XDG standards. Bytes throughout, so that any home
/// serves, with or without the toolkit's application.
namespace FolderLocations {

/// @return with its trailing "/"; empty for anything that is no location. Makes nothing
LightweightString<char> find(iShell::eFolderLocation location);

/// The value of a line of user-dirs.dirs, such as XDG_VIDEOS_DIR="$HOME/Films", in any text of
/// such lines; the last one counts.
/// @param key such as "VIDEOS" @param home for "$HOME"; without a trailing "/"
/// @return empty when there is none, or none that is absolute
LightweightString<char> userFolder(std::string_view text, std::string_view key,
                                   std::string_view home);

/// The data folder that belongs to a library in `folder` (with its trailing "/"): that folder
/// itself where it holds "Shaders/", else "share/vantor/" beside it or, for a library in a folder
/// of its architecture's ("lib/x86_64-linux-gnu/"), one above.
LightweightString<char> resourcesFor(const LightweightString<char>& folder);

} // namespace FolderLocations
