#include "CommandLine.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <charconv>
#include <cstring>
#include <string_view>

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

namespace {

bool number(std::string_view text, int& value)
{
    const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

bool parseSize(std::string_view text, XY<int>& size)
{
    const std::size_t cross = text.find('x');
    return cross != std::string_view::npos && number(text.substr(0, cross), size.x) &&
           number(text.substr(cross + 1), size.y) && size.x >= 960 && size.x <= 7680 &&
           size.y >= 600 && size.y <= 4320;
}

bool parseScale(std::string_view text, double& scale)
{
    static constexpr struct
    {
        std::string_view text;
        double scale;
    } kScales[] = {{"1", 1.0},   {"1.0", 1.0}, {"1.25", 1.25},
                   {"1.5", 1.5}, {"2", 2.0},   {"2.0", 2.0}};
    for (const auto& known : kScales)
        if (known.text == text) {
            scale = known.scale;
            return true;
        }
    return false;
}

Text wide(const char* text)
{
    return OS()->utils()->fromUTF8(text, -1);
}

/// Reads one option's value. @return what is wrong with it, or nothing
Text parseOption(std::string_view option, const char* value, CommandLine& line)
{
    if (option == "--frame") {
        line.frameFile = wide(value);
        return line.frameFile.empty() ? Text(L"--frame needs the name of a file") : Text();
    }
    if (option == "--size")
        return parseSize(value, line.size)
                   ? Text()
                   : L"--size takes WxH between 960x600 and 7680x4320, not \"" + wide(value) +
                         L"\"";
    if (option == "--scale")
        return parseScale(value, line.scale)
                   ? Text()
                   : L"--scale takes 1, 1.25, 1.5 or 2, not \"" + wide(value) + L"\"";
    return number(value, line.seconds) && line.seconds >= 1 && line.seconds <= 86400
               ? Text()
               : L"--seconds takes a number from 1 to 86400, not \"" + wide(value) + L"\"";
}

} // namespace

Text parse(int count, const char* const* arguments, CommandLine& line)
{
    bool folderGiven = false;
    for (int i = 0; i < count; ++i) {
        const std::string_view argument = arguments[i];
        if (argument == "--help" || argument == "-h") {
            line.help = true;
        } else if (argument == "--version") {
            line.version = true;
        } else if (argument == "--frame" || argument == "--size" || argument == "--scale" ||
                   argument == "--seconds") {
            if (i + 1 >= count)
                return wide(arguments[i]) + L" needs a value";
            const Text wrong = parseOption(argument, arguments[++i], line);
            if (!wrong.empty())
                return wrong;
        } else if (argument.starts_with("-") && argument.size() > 1) {
            return L"unknown option \"" + wide(arguments[i]) + L"\"";
        } else if (folderGiven) {
            return L"more than one folder: \"" + wide(arguments[i]) + L"\"";
        } else {
            line.folder = wide(arguments[i]);
            folderGiven = true;
            if (line.folder.empty())
                return L"the folder's name is empty";
        }
    }
    return {};
}

} // namespace Vantor
