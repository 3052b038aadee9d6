#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace EffectCompiler {

/// Gives what an effect names a name that GLSL accepts and nothing else has: the same name where
/// that can be, else one with a number behind it.
class GlslNames
{
public:
    /// A name for something that all of the program sees.
    std::string global(std::string_view name);

    /// Begins another function: numbers start anew.
    void startFunction() { next_.clear(); }
    void openScope() { marks_.push_back(locals_.size()); }
    void closeScope();
    /// A name for something in the innermost scope: unlike all that its place can see.
    std::string local(std::string_view name);

private:
    bool isTaken(const std::string& name) const { return taken_.contains(name); }
    std::string free(std::string_view name);

    std::unordered_set<std::string> taken_;
    std::unordered_map<std::string, int> next_; ///< of a name, the number to try
    std::vector<std::string> locals_;
    std::vector<std::size_t> marks_;
};

/// Whether GLSL, in any version that a driver may apply, or what we write ourselves means
/// something else by it.
bool isReservedName(std::string_view name);

} // namespace EffectCompiler
