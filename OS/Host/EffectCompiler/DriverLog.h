#pragma once

#include "OS/Host/EffectCompiler/Messages.h"

#include <string>

namespace EffectCompiler {

/// Turns what a driver says of a program with "#line N K" in it into messages at line N of file K.
/// Understands "K:N(column): error: text", "K(N) : error C1: text" and "ERROR: K:N: text"; other
/// lines are kept as they are.
/// @param where what is not of such a form belongs to
void addDriverLog(const std::string& log, SourcePlace where, Messages& messages);

} // namespace EffectCompiler
