#pragma once

#include <OS/Core/Export.h>

/// 1 for success, 0 for failure.
using TqResult = int;

/// Turns a platform status code (0 is success) into a TqResult.
///
/// @return 1 for 0; for any other status 0, after printing "result %d\n" with it and the assertion
///         report for "false" at "OS/Mac/MIDI line 27"
OS_API TqResult OStoTqErr(int status);
