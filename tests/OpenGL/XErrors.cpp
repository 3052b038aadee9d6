#include "OpenGL/XErrors.h"

#include "OpenGL/WidgetRig.h"

#include <X11/Xlib.h>

namespace {

int (*formerHandler)(Display*, XErrorEvent*) = nullptr;

int noteError(Display*, XErrorEvent* error)
{
    FaultTrap::note("X error " + std::to_string(error->error_code) + " request " +
                    std::to_string(error->request_code) + "." + std::to_string(error->minor_code));
    return 0;
}

} // namespace

void catchXErrors(bool on)
{
    if (on)
        formerHandler = XSetErrorHandler(noteError);
    else
        XSetErrorHandler(formerHandler);
}
