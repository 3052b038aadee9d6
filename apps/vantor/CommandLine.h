#pragma once

#include "Control/Controller.h"
#include "Model/Text.h"
#include "common/CommandOptions.h"

namespace Vantor {

/// What the command line asks for.
struct CommandLine : CommandOptions
{
    Text folder;            ///< of pictures; empty: not said
    bool sizeGiven = false; ///< size is what was asked for, not the default
    Text at;                ///< time code of the playhead at first; empty: not said
    Text effect;            ///< a file: the viewer's picture is passed through it; empty: not said
    ControllerPlace controller; ///< that drives the playhead; none: not said
    bool play = false;          ///< at once, and tell at the end what became of the frames
};

/// Reads the arguments behind the program's name.
/// @return what is wrong with them, in one line, or nothing
Text parse(int count, const char* const* arguments, CommandLine& line);

extern const char* const kHelp;

} // namespace Vantor
