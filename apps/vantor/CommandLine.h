#pragma once

#include "Model/Text.h"

#include <OS/Primitives/XY.h>

namespace Vantor {

/// What the command line asks for.
struct CommandLine
{
    Text folder;    ///< of pictures; empty: the sample media
    Text frameFile; ///< draw one frame into this file, without a window
    XY<int> size{1280, 720};
    double scale = 1.0;
    int seconds = 0; ///< run so long and quit; 0: until the user quits
    bool help = false;
    bool version = false;
};

/// Reads the arguments behind the program's name.
/// @return what is wrong with them, in one line, or nothing
Text parse(int count, const char* const* arguments, CommandLine& line);

extern const char* const kHelp;

} // namespace Vantor
