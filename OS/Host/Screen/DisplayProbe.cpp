#include "OS/Host/Screen/DisplayProbe.h"

#include <cstdlib>
#include <xcb/xcb.h>

namespace Host {

namespace {

bool isSet(const char* variable)
{
    const char* value = std::getenv(variable);
    return value && *value;
}

} // namespace

bool displayAnswers()
{
    if (!isSet("DISPLAY"))
        return false;
    // xcb_connect never gives null; a connection in error must be disconnected all the same.
    xcb_connection_t* connection = xcb_connect(nullptr, nullptr);
    const bool answers = xcb_connection_has_error(connection) == 0;
    xcb_disconnect(connection);
    return answers;
}

bool desktopHidesScreen()
{
    return isSet("WAYLAND_DISPLAY");
}

} // namespace Host
