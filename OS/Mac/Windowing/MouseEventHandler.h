#pragma once

class QMouseEvent;

/// Where a window's mouse events go, all kinds through one door.
///
/// While a button is held the toolkit's own grab brings the moves and the release outside the
/// window, so nothing more is installed.
class MouseEventHandler
{
public:
    virtual void handleMouseEvent(QMouseEvent* event) = 0;

protected:
    ~MouseEventHandler() = default;
};
