#pragma once

#include <OS/Files/iFileManager.h>

#include <sys/stat.h>

namespace OSInternal {

/// Copies what a file holds, from its start to its end, into an empty one, in pieces of a few
/// megabytes; holes stay holes.
/// @param progress called before the first piece and after each; false gives up; may be empty
/// @return whether everything was copied; else `errno` tells, ECANCELED after giving up
bool copyContents(int from, int to, const iFileManager::ProgressCallback& progress);

/// Gives a file another's mode, times, extended attributes and owner, as far as the file system and
/// the process's rights go.
void copyAttributes(int from, const struct stat& info, int to);

} // namespace OSInternal
