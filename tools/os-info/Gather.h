#pragma once

#include "Report.h"

namespace OsInfo {

/// Asks the library for all that it sees of this machine. On the main thread; starts GL where it
/// can, and ends it again, so it is called once. What the library prints meanwhile becomes the last
/// section.
///
/// A subject is one function that returns its section, and one line in the list in Gather.cpp.
Report gather();

} // namespace OsInfo
