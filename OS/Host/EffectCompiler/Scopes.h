#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// The names that a piece of a function sees: its locals, innermost first.
class Scopes
{
public:
    void open() { marks_.push_back(names_.size()); }
    void close();
    /// @return the variable of that name in the innermost scope, which stays what the name means;
    ///         null when there was none
    const Variable* declare(Variable* variable);
    /// @return null when no scope has it
    Variable* find(std::string_view name) const;

private:
    std::vector<std::size_t> marks_; ///< where each open scope begins in names_
    std::vector<Variable*> names_;
    /// Of each name, indices into names_, innermost last.
    std::unordered_map<std::string_view, std::vector<std::size_t>> byName_;
};

} // namespace EffectCompiler
