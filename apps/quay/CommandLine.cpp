#include "CommandLine.h"

#include "View/Layout.h"

namespace Quay {

const char* const kHelp =
    "Usage: quay [--frame FILE.png | --grab FILE.png] [--size WxH] [--scale S] [--seconds N]\n"
    "       quay --gl-report [--json]\n"
    "\n"
    "A board that shows processors, memory, monitors, drives, network volumes, folders, settings,\n"
    "serial ports, MIDI devices and what could compute, as they are now.\n"
    "\n"
    "  --frame FILE   draw one frame into a picture file, without a window\n"
    "  --grab FILE    show the window, write what the screen shows of it, and quit\n"
    "  --size WxH     of the window or the frame in logical pixels, 480x320 to 7680x4320;\n"
    "                 as it was last time, 1280x800 at first and for frames\n"
    "  --scale S      pixels of the frame for each logical one: 1, 1.25, 1.5 or 2\n"
    "  --seconds N    run for N seconds and quit; a frame watches for N seconds, 1 by default\n"
    "  --gl-report    tell what the graphics driver says of itself; --json for programs\n"
    "  --help         this text\n"
    "  --version      the version\n"
    "\n"
    "Tab goes from panel to panel, the arrows go through what can be chosen, Return opens it. R\n"
    "reads everything anew, U changes the units. Escape quits.\n";

Text parse(int count, const char* const* arguments, CommandOptions& options)
{
    const Text wrong =
        parseOptions(count, arguments, {Layout::kSmallest, Layout::kLargest}, options);
    if (wrong.empty() && !options.others.empty())
        return L"no arguments but options are taken: \"" + options.others[0] + L"\"";
    return wrong;
}

} // namespace Quay
