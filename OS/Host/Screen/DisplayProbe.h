#pragma once

namespace Host {

/// Whether the environment names an X11 display and its server lets this process in. Asked before
/// the toolkit is started on it: the toolkit ends the process when it cannot connect.
bool displayAnswers();

/// Whether the desktop is a Wayland session: an X11 display shows black there in place of the
/// screen.
bool desktopHidesScreen();

} // namespace Host
