#include "OS/Mac/Windowing/Monitors.h"

#include <OS.h>

#include <algorithm>

namespace Monitors {

namespace {

List::const_iterator find(const List& monitors, const XY<int>& position)
{
    return std::find_if(monitors.begin(), monitors.end(),
                        [&](const auto& m) { return m.desktopRect_.contains(position); });
}

} // namespace

List current()
{
    List monitors;
    OS()->systemInfo()->getMonitorInfo(monitors);
    return monitors;
}

XY<int> sizeAt(const List& monitors, const XY<int>& position)
{
    if (monitors.empty())
        return {};
    const auto found = find(monitors, position);
    return (found != monitors.end() ? *found : monitors.front()).fullRect_.size();
}

bool hold(const List& monitors, const XY<int>& position)
{
    return find(monitors, position) != monitors.end();
}

} // namespace Monitors
