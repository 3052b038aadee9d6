#include "OS/Host/EffectCompiler/Scopes.h"

namespace EffectCompiler {

void Scopes::close()
{
    while (names_.size() > marks_.back()) {
        byName_[names_.back()->name].pop_back();
        names_.pop_back();
    }
    marks_.pop_back();
}

const Variable* Scopes::declare(Variable* variable)
{
    auto& indices = byName_[variable->name];
    if (!indices.empty() && indices.back() >= marks_.back())
        return names_[indices.back()];
    indices.push_back(names_.size());
    names_.push_back(variable);
    return nullptr;
}

Variable* Scopes::find(std::string_view name) const
{
    const auto found = byName_.find(name);
    if (found == byName_.end() || found->second.empty())
        return nullptr;
    return names_[found->second.back()];
}

} // namespace EffectCompiler
