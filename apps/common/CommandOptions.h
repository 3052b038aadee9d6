#pragma once

#include "common/Geometry.h"
#include "common/Text.h"

#include <map>
#include <string>
#include <vector>

namespace App {

/// What every sample application takes on its command line.
struct CommandOptions
{
    Text frameFile; ///< draw one frame into this file, without a window
    Text grabFile;  ///< show the window and write what the screen shows of it into this file
    Point size;     ///< of the window or the frame; (0, 0): not said
    double scale = 1.0;
    int seconds = 0;       ///< run so long and quit; 0: until the user quits
    bool glReport = false; ///< tell what the graphics driver says of itself
    bool json = false;     ///< for programs
    bool help = false;
    bool version = false;
    std::map<std::string, Text> own; ///< an application's own options that were given
    std::vector<Text> others;        ///< what is no option
};

/// The sizes that --size may name.
struct SizeLimits
{
    Point smallest;
    Point largest;
};

/// An option that only one application takes.
struct OwnOption
{
    const char* name;
    bool takesValue;
};

/// Reads the arguments behind the program's name.
/// @return what is wrong with them, in one line, or nothing
Text parseOptions(int count, const char* const* arguments, const SizeLimits& limits,
                  CommandOptions& options, const std::vector<OwnOption>& ownOptions = {});

} // namespace App
