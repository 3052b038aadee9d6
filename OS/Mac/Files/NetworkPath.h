#pragma once

#include "OS/Host/Desktop/Volume.h"

#include <OS/Core/LightweightString.h>

#include <vector>

namespace OSInternal {

/// Where the file of an address such as "smb://server/share/folder/file" is found among the mounted
/// network volumes, the system's and the desktop's. Mounts nothing, starts nothing and speaks to no
/// service; any thread.
///
/// Server and share are compared with their case ignored; below a share, the file system decides.
/// Of several mounts the one that reaches furthest down is taken, then one that can be written,
/// then the system's before the desktop's. "." and ".." are worked out before anything is looked
/// up, and a path that would leave its share is none. Names are taken literally, so that a file
/// "100%25" is found; only where nothing of the literal name exists, and a name with each "%20"
/// made the byte that it stands for does, the latter is meant. Looking whether a name exists asks
/// the server, as opening it would.
///
/// @return a path for the system, of a file that may or may not exist; empty when no mounted volume
/// holds the address
LightweightString<char> resolveNetworkPath(const LightweightString<char>& address);

/// The same among given volumes.
LightweightString<char> resolveNetworkPath(const LightweightString<char>& address,
                                           const std::vector<Volume>& volumes);

} // namespace OSInternal
