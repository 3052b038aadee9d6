#pragma once

#include "common/Geometry.h"

#include <OS/Core/Ptr.h>
#include <OS/Files/iSettings.h>
#include <OS/Windowing/iRootWindow.h>

namespace App {

/// Where a window stands and how large it is, as it is remembered from one run to the next.
struct WindowPlace
{
    Point size;     ///< of the window when it is neither maximised nor fills the screen
    Point position; ///< likewise
    bool maximised = false;
    bool fullScreen = false;

    friend bool operator==(const WindowPlace&, const WindowPlace&) = default;
};

/// What the section "Window" remembers. @param fallback for what it does not, or not soundly
WindowPlace readPlace(const Tq::Ptr<iSettings>& settings, const WindowPlace& fallback,
                      const Point& smallest, const Point& largest);
void writePlace(const Tq::Ptr<iSettings>& settings, const WindowPlace& place);

/// Asks for a window at a place; a position that no monitor shows any more is left to the window
/// manager's first one.
void realizeAt(iRootWindow& window, iRootWindow::InitArgs args, const WindowPlace& place);
/// Where a window is now. @param before keeps what the state of the window hides: the size to which
/// a maximised one goes back
WindowPlace placeOf(const iRootWindow& window, const WindowPlace& before);

} // namespace App
