#pragma once

#include <OS/System/iSystemInfo.h>

#include <vector>

/// Questions about where on the desktop a position lies.
namespace Monitors {

using List = std::vector<iSystemInfo::MonitorInfo>;

/// The monitors there are now. On the thread of the event loop.
List current();

/// The full size of the first monitor whose usable area holds a position, else of the first
/// monitor; (0, 0) when there is none.
XY<int> sizeAt(const List& monitors, const XY<int>& position);

/// Whether some monitor's usable area holds a position.
bool hold(const List& monitors, const XY<int>& position);

} // namespace Monitors
