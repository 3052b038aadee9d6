#pragma once

#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <string_view>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// What an effect declares at file scope, by name. Reports what is declared twice, and structs and
/// interfaces that do not hold together.
class Declarations
{
public:
    Declarations(SyntaxTree& tree, Messages& messages);

    /// @return null when there is none
    Variable* global(std::string_view name) const;
    /// The functions of a name, methods left out; of each signature one: the definition, or the
    /// prototype where that is all there is.
    const std::vector<Function*>& functions(std::string_view name) const;
    /// @return null when there is none
    static const Field* field(const Record& record, std::string_view name);
    /// Those of a record, as functions() gives them. An interface's have no body.
    static std::vector<Function*> methods(const Record& record, std::string_view name);

private:
    void addRecord(Record& record);
    void checkImplements(const Record& record);
    void addGlobal(Variable& variable);
    void addFunction(Function& function);
    void addMethods(Record& record);

    Messages& messages_;
    std::unordered_map<std::string_view, Variable*> globals_;
    std::unordered_map<std::string_view, std::vector<Function*>> functions_;
};

/// Whether both take the same types in the same directions.
bool hasSameParameters(const Function& left, const Function& right);

} // namespace EffectCompiler
