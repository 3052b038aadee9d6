#pragma once

#include <OS/Core/LightweightString.h>

namespace OSInternal {

/// What a system call can open for a path of the interfaces: the file of a network path is looked
/// for among the mounted volumes.
/// @return empty, which no call opens, for what is not mounted and for text with a zero in it
LightweightString<char> localPath(const LightweightString<wchar_t>& path);

} // namespace OSInternal
