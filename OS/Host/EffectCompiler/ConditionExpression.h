#pragma once

#include "OS/Host/EffectCompiler/Token.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace EffectCompiler {

/// The value of what follows #if, after "defined" and macros are replaced; names that are left
/// are 0.
/// @param fault gets what is wrong
/// @return nothing for a fault
std::optional<std::int64_t> evaluateCondition(const std::vector<Token>& tokens, std::string& fault);

} // namespace EffectCompiler
