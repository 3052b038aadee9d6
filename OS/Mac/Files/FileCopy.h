#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Files/iFileManager.h>

/// Whole files, from one path for the system to another. No state; any thread.
namespace OSInternal {

/// Contents, mode, times, extended attributes and, where permitted, the owner. Holes stay holes
/// where the file system tells them. Links are followed on both sides.
///
/// Made by ReplacementFile, so the target is whole at every moment. A target that could only be
/// overwritten in place is left alone.
/// @return false also for anything but regular files, and for a file onto itself
bool copyFile(const LightweightString<char>& from, const LightweightString<char>& to,
              bool failIfExists, const iFileManager::ProgressCallback& progress);

/// Renames; a file or a link also across file systems, where what stood at `to` is replaced only
/// when the copy is whole. No link is followed.
/// @return false also when the copy stands there but the old one could not be removed
bool moveFile(const LightweightString<char>& from, const LightweightString<char>& to,
              bool failIfExists);

} // namespace OSInternal
