#pragma once

#include "common/Geometry.h"
#include "common/Text.h"

#include <OS/Core/Ptr.h>
#include <OS/Windowing/iRootWindow.h>

#include <functional>

namespace App {

/// Opens a window without a frame at the top left of the screen, waits until it is drawn, and
/// writes what the screen shows of it. Ends the window manager's work: nothing more can be shown.
///
/// @param size of the window @param handler of its events
/// @param attach called when there is a window, @param drawn asked until it is true,
/// @param detach called before the window goes
/// @return what went wrong, in one line, or nothing
Text grabWindow(const Point& size, const Tq::Ptr<iEventHandler>& handler,
                const std::function<void(const Tq::Ptr<iRootWindow>&)>& attach,
                const std::function<bool()>& drawn, const std::function<void()>& detach,
                const Text& path);

} // namespace App
