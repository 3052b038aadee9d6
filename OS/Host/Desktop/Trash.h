#pragma once

#include <OS/Core/LightweightString.h>

namespace OSInternal {

/// Moves a file, a link or a folder into the desktop's trash (the freedesktop.org standard for it):
/// the home trash, or that of the file system which holds it.
///
/// @param path bytes as the system has them
/// @return false, everything in place, where there is no trash for it
bool moveToTrash(const LightweightString<char>& path);

} // namespace OSInternal
