#pragma once

#include <string>

namespace OSInternal {

/// Whether a process that this user may look into has a file below a folder open or mapped, or
/// works in it. Reads /proc only (proc(5)), so a dead volume cannot block it; takes some tens of
/// milliseconds with some hundreds of processes. True at that moment only.
/// @param folder without links, without a trailing "/"
bool isInUse(const std::string& folder);

} // namespace OSInternal
