#pragma once

#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>

namespace EffectCompiler {

/// A type as hosts see it.
ValueType valueTypeOf(const Type& type);

/// An initialiser or an annotation as hosts see it: numbers, a text, or the name that stands where
/// a text or an object is wanted.
/// @return nothing for what is not constant
std::optional<Value> valueOf(const Expression& expression, const Type& type,
                             ConstantEvaluator& evaluator);

} // namespace EffectCompiler
