#include "OS/Host/EffectCompiler/Declarations.h"

#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <unordered_set>

namespace EffectCompiler {
namespace {

bool isMethod(const Function& function)
{
    return function.owner != nullptr;
}

/// Gives parameters the values that another declaration of the function has for them.
void takeDefaults(Function& function, const Function& from)
{
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        if (!function.parameters[i]->initialiser)
            function.parameters[i]->initialiser = from.parameters[i]->initialiser;
    }
}

} // namespace

bool hasSameParameters(const Function& left, const Function& right)
{
    return std::equal(left.parameters.begin(), left.parameters.end(), right.parameters.begin(),
                      right.parameters.end(), [](const Variable* a, const Variable* b) {
                          return a->type == b->type && a->direction == b->direction;
                      });
}

Declarations::Declarations(SyntaxTree& tree, Messages& messages) : messages_(messages)
{
    for (Record* record : tree.records)
        addRecord(*record);
    for (Variable* variable : tree.globals)
        addGlobal(*variable);
    for (Function* function : tree.functions) {
        if (!isMethod(*function))
            addFunction(*function);
    }
    for (Record* record : tree.records) {
        addMethods(*record);
        checkImplements(*record);
    }
}

void Declarations::addRecord(Record& record)
{
    if (record.fields.size() > Limits::kFields || record.methods.size() > Limits::kOverloads) {
        messages_.error(record.place, "struct '" + record.name + "' has too many members");
        record.fields.clear();
        record.methods.clear();
    }
    std::unordered_set<std::string_view> names;
    for (const Field& field : record.fields) {
        if (!names.insert(field.name).second)
            messages_.error(field.place, "field '" + field.name + "' is defined twice");
        if (field.type.record && field.type.record->isInterface)
            messages_.error(field.place, "field '" + field.name + "' cannot be of interface '" +
                                             field.type.record->name + "'");
    }
}

void Declarations::addMethods(Record& record)
{
    for (const Function* method : record.methods) {
        const auto isTwin = [&](const Function* other) {
            return other != method && other->body && method->body && other->name == method->name &&
                   hasSameParameters(*other, *method);
        };
        if (std::any_of(record.methods.begin(), record.methods.end(), isTwin))
            messages_.error(method->place, "method '" + method->name +
                                               "' is defined twice with the same parameters");
        if (record.isInterface && method->body)
            messages_.error(method->place, "a method of an interface has no body");
    }
}

void Declarations::checkImplements(const Record& record)
{
    if (!record.implements)
        return;
    if (!record.implements->isInterface) {
        messages_.error(record.place, "'" + record.implements->name + "' is no interface");
        return;
    }
    for (const Function* wanted : record.implements->methods) {
        const auto fits = [&](const Function* method) {
            return method->name == wanted->name && method->result == wanted->result &&
                   hasSameParameters(*method, *wanted);
        };
        if (std::none_of(record.methods.begin(), record.methods.end(), fits))
            messages_.error(record.place, "'" + record.name + "' lacks the method '" +
                                              wanted->name + "' of '" + record.implements->name +
                                              "'");
    }
}

void Declarations::addGlobal(Variable& variable)
{
    if (!globals_.emplace(variable.name, &variable).second)
        messages_.error(variable.place, "'" + variable.name + "' is defined twice");
}

void Declarations::addFunction(Function& function)
{
    auto& overloads = functions_[function.name];
    const auto same = std::find_if(overloads.begin(), overloads.end(), [&](const Function* other) {
        return hasSameParameters(*other, function);
    });
    if (same == overloads.end()) {
        if (overloads.size() < Limits::kOverloads)
            overloads.push_back(&function);
        else
            messages_.error(function.place,
                            "function '" + function.name + "' has too many overloads");
        return;
    }
    Function& earlier = **same;
    if (earlier.result != function.result)
        messages_.error(function.place,
                        "function '" + function.name +
                            "' differs from its other declaration only in its result");
    else if (earlier.body && function.body)
        messages_.error(function.place, "function '" + function.name +
                                            "' is defined twice with the same parameters");
    takeDefaults(function, earlier);
    takeDefaults(earlier, function);
    if (!function.body) {
        function.definition = earlier.body ? &earlier : nullptr;
    } else if (!earlier.body) {
        earlier.definition = &function;
        *same = &function;
    }
}

Variable* Declarations::global(std::string_view name) const
{
    const auto found = globals_.find(name);
    return found == globals_.end() ? nullptr : found->second;
}

const std::vector<Function*>& Declarations::functions(std::string_view name) const
{
    static const std::vector<Function*> none;
    const auto found = functions_.find(name);
    return found == functions_.end() ? none : found->second;
}

const Field* Declarations::field(const Record& record, std::string_view name)
{
    const auto found = std::find_if(record.fields.begin(), record.fields.end(),
                                    [&](const Field& field) { return field.name == name; });
    return found == record.fields.end() ? nullptr : &*found;
}

std::vector<Function*> Declarations::methods(const Record& record, std::string_view name)
{
    std::vector<Function*> found;
    for (Function* method : record.methods) {
        if (method->name == name && (method->body || record.isInterface))
            found.push_back(method);
    }
    return found;
}

} // namespace EffectCompiler
