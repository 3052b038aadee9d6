#pragma once

#include "Model/Text.h"
#include "common/CommandOptions.h"

namespace Quay {

/// Reads the arguments behind the program's name. A size that is not said stays (0, 0).
/// @return what is wrong with them, in one line, or nothing
Text parse(int count, const char* const* arguments, CommandOptions& options);

extern const char* const kHelp;

} // namespace Quay
