#include "CommandLine.h"

#include "View/Layout.h"

namespace Vantor {

const char* const kHelp =
    "Usage: vantor [FOLDER] [--frame FILE.png] [--size WxH] [--scale S] [--seconds N]\n"
    "\n"
    "A small editor: a bin with the pictures of FOLDER (the sample media without one), a viewer "
    "and\n"
    "a timeline.\n"
    "\n"
    "  --frame FILE   draw one frame into a picture file, without a window\n"
    "  --size WxH     of the window or the frame in logical pixels, 960x600 to 7680x4320;\n"
    "                 1280x720 by default\n"
    "  --scale S      pixels of the frame for each logical one: 1, 1.25, 1.5 or 2\n"
    "  --seconds N    run for N seconds and quit\n"
    "  --help         this text\n"
    "  --version      the version\n"
    "\n"
    "Space plays and pauses, J K L shuttle, the arrows step, Home and End go to the ends, Up and "
    "Down\n"
    "to the next cut. The wheel zooms, Delete removes a clip, Control-Z takes back. Escape "
    "quits.\n";

Text parse(int count, const char* const* arguments, CommandLine& line)
{
    const SizeLimits limits{Layout::kSmallest, Layout::kLargest};
    const Text wrong = parseOptions(count, arguments, limits, line);
    if (!wrong.empty())
        return wrong;
    line.sizeGiven = line.size.x > 0;
    if (!line.sizeGiven)
        line.size = {1280, 720};
    if (line.others.size() > 1)
        return L"more than one folder: \"" + line.others[1] + L"\"";
    if (!line.others.empty()) {
        line.folder = line.others[0];
        if (line.folder.empty())
            return L"the folder's name is empty";
    }
    return {};
}

} // namespace Vantor
