#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <functional>
#include <optional>
#include <string_view>

namespace EffectCompiler {

/// Finds the global that a name means, or null.
using FindGlobal = std::function<const Variable*(std::string_view)>;

/// The value of a state that is no program, as hosts see it.
/// @return nothing, and an error or a warning in messages, where it cannot be used
std::optional<StateAssignment> assignmentOf(const State& state, const FindGlobal& find,
                                            Messages& messages);

} // namespace EffectCompiler
