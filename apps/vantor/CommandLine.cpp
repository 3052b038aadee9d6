#include "CommandLine.h"

#include "Model/Timecode.h"
#include "View/Layout.h"

namespace Vantor {

const char* const kHelp =
    "Usage: vantor [FOLDER] [--frame FILE.png | --grab FILE.png] [--size WxH] [--scale S]\n"
    "              [--at TIME] [--effect FILE.fx] [--controller DEVICE] [--play]\n"
    "              [--seconds N]\n"
    "       vantor --gl-report [--json]\n"
    "\n"
    "A small editor: a bin with the pictures of FOLDER, a viewer and a timeline. Without FOLDER "
    "it\n"
    "is the one of the last time, or the sample media; for frames always these.\n"
    "\n"
    "  --frame FILE   draw one frame into a picture file, without a window\n"
    "  --grab FILE    show the window, write what the screen shows of it, and quit\n"
    "  --size WxH     of the window or the frame in logical pixels, 960x600 to 7680x4320;\n"
    "                 as it was last time, 1280x720 at first and for frames\n"
    "  --scale S      pixels of the frame for each logical one: 1, 1.25, 1.5 or 2\n"
    "  --at TIME      of the playhead at first: HH:MM:SS:FF or the last parts of it\n"
    "  --effect FILE  pass the viewer's picture through an effect; edits of the file are followed\n"
    "  --controller D drive the playhead with midi:NAME or a jog wheel at serial:PATH\n"
    "  --play         play at once; the last line tells frames shown and dropped\n"
    "  --seconds N    run for N seconds and quit\n"
    "  --gl-report    tell what the graphics driver says of itself; --json for programs\n"
    "  --help         this text\n"
    "  --version      the version\n"
    "\n"
    "Space plays and pauses, J K L shuttle, the arrows step, Home and End go to the ends, Up and\n"
    "Down to the next cut. Return fills the screen, and Return or Escape leaves it; F fits the\n"
    "picture, 5, 1 and 2 show it at 50, 100 and 200 %; S, T and N show safe areas, time code and\n"
    "frame number; E opens the effects, W the scopes, comma and full stop choose an effect, X\n"
    "makes a transition; [ and ] change the rate, Control-L the loop. The wheel zooms, Delete\n"
    "removes a clip, or a picture of the bin to the trash, Control-Z takes back, Control-E writes\n"
    "the viewer's frame (Control-T chooses its type), Control-G puts the screen into the bin.\n"
    "Escape quits.\n";

Text parse(int count, const char* const* arguments, CommandLine& line)
{
    const SizeLimits limits{Layout::kSmallest, Layout::kLargest};
    const Text wrong = parseOptions(
        count, arguments, limits, line,
        {{"--at", true}, {"--effect", true}, {"--controller", true}, {"--play", false}});
    if (!wrong.empty())
        return wrong;
    line.play = line.own.count("--play") > 0;
    if (line.own.count("--at") > 0) {
        line.at = line.own["--at"];
        if (!Timecode::parse(line.at, Timecode::kUsual))
            return L"--at takes HH:MM:SS:FF or the last parts of it, not \"" + line.at + L"\"";
    }
    if (line.own.count("--effect") > 0) {
        line.effect = line.own["--effect"];
        if (line.effect.empty())
            return L"--effect needs the name of a file";
    }
    if (line.own.count("--controller") > 0) {
        line.controller = controllerOf(line.own["--controller"]);
        if (line.controller.kind == ControllerPlace::Kind::eNone)
            return L"--controller takes midi:NAME or serial:PATH, not \"" +
                   line.own["--controller"] + L"\"";
    }
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
