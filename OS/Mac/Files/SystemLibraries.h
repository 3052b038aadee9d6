#pragma once

#include <OS/Core/LightweightString.h>

namespace OSInternal {

/// Where the loader would find a shared library, without loading it: in LD_LIBRARY_PATH, in the
/// folders of /etc/ld.so.conf, and in those that it always looks in.
///
/// @param name "libz.so.1" is taken as it is; for "z" and "libz" the newest libz.so.* is taken in
/// the first folder that has one; one with "/" is a path
/// @return empty when there is none for this kind of processor
LightweightString<char> findSystemLibrary(const LightweightString<char>& name);

} // namespace OSInternal
