#include "CommandLine.h"

#include "View/Layout.h"

namespace Vantor {

const char* const kHelp =
    "Usage: vantor [FOLDER] [--frame FILE.png] [--size WxH] [--scale S] [--seconds N]\n"
    "\n"
    "A small editor: a bin with the pictures of FOLDER, a viewer and a timeline. Without FOLDER "
    "it\n"
    "is the one of the last time, or the sample media; for frames always these.\n"
    "\n"
    "  --frame FILE   draw one frame into a picture file, without a window\n"
    "  --size WxH     of the window or the frame in logical pixels, 960x600 to 7680x4320;\n"
    "                 as it was last time, 1280x720 at first and for frames\n"
    "  --scale S      pixels of the frame for each logical one: 1, 1.25, 1.5 or 2\n"
    "  --seconds N    run for N seconds and quit\n"
    "  --help         this text\n"
    "  --version      the version\n"
    "\n"
    "Space plays and pauses, J K L shuttle, the arrows step, Home and End go to the ends, Up and\n"
    "Down to the next cut. The wheel zooms, Delete removes a clip, or a picture of the bin to the\n"
    "trash, Control-Z takes back, Control-E writes the viewer's frame. Escape quits.\n";

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
