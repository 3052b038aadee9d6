#include "OS/Host/EffectCompiler/StageWriter.h"

#include "OS/Host/EffectCompiler/EffectValues.h"
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/GlslHelpers.h"
#include "OS/Host/EffectCompiler/StateMatrices.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

constexpr std::size_t kMostInstances = 2000;
constexpr std::size_t kMostUniforms = 4096;
constexpr std::size_t kMostText = 16u << 20;

std::size_t lengthOf(const Type& type)
{
    std::size_t length = 1;
    for (const int dim : type.dims)
        length *= static_cast<std::size_t>(dim);
    return length;
}

bool isUniformGlobal(const Variable& variable)
{
    return variable.isEffectParameter() || variable.type.scalar == Scalar::eSampler;
}

} // namespace

PassNames::PassNames(const SyntaxTree& tree)
{
    for (const Record* record : tree.records)
        records[record] =
            names.global(record->name.starts_with("struct#") ? "Unnamed" : record->name);
    for (const Variable* variable : tree.globals)
        globals[variable] = names.global(variable->name);
}

StageWriter::StageWriter(const SyntaxTree& tree, PassNames& names, Stage stage, int version,
                         Messages& messages)
    : tree_(tree), names_(names), stage_(stage), version_(version), messages_(messages)
{
}

void StageWriter::refuse(SourcePlace place, const std::string& reason)
{
    messages_.error(place, reason);
    isRefused_ = true;
}

std::string StageWriter::typeName(const Type& type, SourcePlace place)
{
    if (type.scalar == Scalar::eRecord) {
        if (type.record->isInterface)
            refuse(place, "interface '" + type.record->name + "' is not connected to a struct");
        addRecord(*type.record, place);
        return names_.records[type.record];
    }
    noteSampler(type);
    const bool isOddMatrix = isGlslMatrix(type) && type.scalar != Scalar::eFloat;
    if (isOddMatrix || type.scalar == Scalar::eTexture || type.scalar == Scalar::eString)
        refuse(place, "GLSL cannot express '" + nameOf(withScalar(type, type.scalar)) + "'");
    if (type.scalar == Scalar::eUint && version_ < 130)
        refuse(place, "GLSL 1.20 cannot express '" + nameOf(type) + "'");
    return glslTypeName(type);
}

void StageWriter::noteSampler(const Type& type)
{
    usesRectangles_ =
        usesRectangles_ || (type.scalar == Scalar::eSampler && type.texture == TextureKind::eRect);
}

std::string StageWriter::declaration(const Type& type, const std::string& name, SourcePlace place)
{
    std::string text = typeName(type, place) + " " + name;
    if (isArray(type))
        text += "[" + std::to_string(lengthOf(type)) + "]";
    return text;
}

std::string StageWriter::arrayTypeName(const Type& type, SourcePlace place)
{
    std::string text = typeName(type, place);
    if (isArray(type))
        text += "[" + std::to_string(lengthOf(type)) + "]";
    return text;
}

void StageWriter::addRecord(const Record& record, SourcePlace place)
{
    if (!usedRecords_.insert(&record).second)
        return;
    GlslNames names;
    for (const Field& field : record.fields) {
        (void)typeName(field.type, place); // what it holds comes first
        if (!names_.fields.contains(&field))
            names_.fields[&field] = names.global(field.name);
        else
            names.global(names_.fields[&field]);
    }
    writeRecord(record);
}

void StageWriter::writeRecord(const Record& record)
{
    records_.add(record.place, 0, "struct " + names_.records[&record]);
    records_.addPlain("{");
    for (const Field& field : record.fields)
        records_.add(field.place, 1,
                     declaration(field.type, names_.fields[&field], field.place) + ";");
    if (record.fields.empty())
        records_.addPlain("    float empty; // GLSL wants a member");
    records_.addPlain("};");
    records_.addPlain("");
}

const std::string& StageWriter::fieldName(const Record& record, const std::string& field)
{
    const auto found = std::find_if(record.fields.begin(), record.fields.end(),
                                    [&](const Field& each) { return each.name == field; });
    addRecord(record, record.place);
    return names_.fields[&*found];
}

GlslValue StageWriter::global(const Variable& variable, SourcePlace place)
{
    const std::string state = stateMatrix(variable.semantic);
    if (!state.empty() && variable.isEffectParameter() && !variable.isWritten)
        return {state, Binding::ePrimary, true};
    const UsedGlobal& used = use(variable, place);
    const bool isStable = !variable.isWritten;
    if (!used.copy.empty())
        return {used.copy, Binding::ePrimary, false};
    return {names_.globals[&variable], Binding::ePrimary, isStable};
}

StageWriter::UsedGlobal& StageWriter::use(const Variable& variable, SourcePlace place)
{
    const auto [entry, isNew] = usedGlobals_.try_emplace(&variable);
    UsedGlobal& used = entry->second;
    if (!isNew)
        return used;
    globalOrder_.push_back(&variable);
    (void)typeName(variable.type, place);
    used.isUniform = isUniformGlobal(variable);
    if (used.isUniform) {
        if (variable.isWritten)
            used.copy = names_.names.global(variable.name + "_1");
        return used;
    }
    used.isConst = variable.hasConstantValue && !variable.isWritten;
    used.isDeferred = variable.initialiser && !variable.hasConstantValue;
    return used;
}

bool StageWriter::isConstant(const Variable& variable)
{
    return !variable.isWritten && variable.isGlobal;
}

/// Writes the initialiser, which may ask for more globals and functions.
void StageWriter::initialise(const Variable& variable, UsedGlobal& used)
{
    const std::string& name = names_.globals[&variable];
    FunctionWriter writer(*this, nullptr);
    if (used.isUniform) {
        const std::string state = stateMatrix(variable.semantic);
        if (!used.copy.empty())
            used.start.add(variable.place, 1,
                           used.copy + " = " + (state.empty() ? name : state) + ";");
        return;
    }
    if (!used.isDeferred) {
        writer.forbidStatements();
        used.initialiser = variable.initialiser ? writer.value(*variable.initialiser).text
                                                : writer.zero(variable.type, variable.place).text;
        return;
    }
    names_.names.openScope();
    const GlslValue value = writer.value(*variable.initialiser);
    writer.flush(used.start, variable.place, 1);
    used.start.add(variable.place, 1, name + " = " + alone(value) + ";");
    names_.names.closeScope();
}

StageWriter::Instance& StageWriter::instance(const Function& function,
                                             const std::vector<const Record*>& records)
{
    Instance*& known = instancesByKey_[{&function, records}];
    if (known)
        return *known;
    Instance& made = instances_.emplace_back();
    made.function = &function;
    made.records = records;
    const std::string prefix = function.owner ? function.owner->name + "_" : "";
    made.name = names_.names.global(prefix + function.name);
    known = &made;
    if (instances_.size() > kMostInstances)
        refuse(function.place, "the program needs too many functions");
    return made;
}

std::string StageWriter::helper(std::string_view name, const std::string& type)
{
    const std::string key = std::string(name) + (isHelperGeneric(name) ? " " + type : "");
    if (!helpers_.contains(key))
        helpers_[key] = helperText(name, type, version_);
    return "fx_" + std::string(name);
}

void StageWriter::writeFunctions()
{
    std::size_t globals = 0;
    std::size_t text = 0;
    while (!isRefused_ && (written_ < instances_.size() || globals < globalOrder_.size())) {
        if (written_ < instances_.size()) {
            Instance& instance = instances_[written_++];
            FunctionWriter(*this, &instance).writeFunction();
            text += instance.text.text().size();
            if (text > kMostText)
                refuse(instance.function->place, "the program becomes too long");
            continue;
        }
        const Variable& variable = *globalOrder_[globals++];
        initialise(variable, usedGlobals_[&variable]);
    }
}

void StageWriter::writeStart(LineWriter& out) const
{
    for (const Variable* variable : tree_.globals) {
        const auto used = usedGlobals_.find(variable);
        if (used != usedGlobals_.end() && !used->second.start.isEmpty())
            out.append(used->second.start);
    }
}

void StageWriter::declareGlobals(LineWriter& out)
{
    for (const Variable* variable : tree_.globals) {
        const auto found = usedGlobals_.find(variable);
        if (found == usedGlobals_.end())
            continue;
        const UsedGlobal& used = found->second;
        const SourcePlace place = variable->place;
        const std::string text = declaration(variable->type, names_.globals[variable], place);
        const bool isState = !stateMatrix(variable->semantic).empty();
        if (used.isUniform && !isState)
            out.add(place, 0, "uniform " + text + ";");
        if (!used.copy.empty())
            out.add(place, 0, declaration(variable->type, used.copy, place) + ";");
        if (used.isUniform)
            continue;
        const std::string value = used.initialiser.empty() ? "" : " = " + used.initialiser;
        out.add(place, 0, (used.isConst ? "const " : "") + text + value + ";");
    }
    for (const Variable* variable : entryUniforms_)
        out.add(variable->place, 0,
                "uniform " +
                    declaration(variable->type, names_.globals[variable], variable->place) + ";");
}

/// Each after those that it calls.
void StageWriter::declareFunctions(LineWriter& out)
{
    struct Step
    {
        const Instance* instance;
        std::size_t next;
    };
    std::map<const Instance*, bool> isDone; // false while open
    for (const Instance& first : instances_) {
        if (isDone.contains(&first))
            continue;
        std::vector<Step> stack = {{&first, 0}};
        isDone[&first] = false;
        while (!stack.empty()) {
            Step& step = stack.back();
            if (step.next == step.instance->callees.size()) {
                isDone[step.instance] = true;
                out.append(step.instance->text);
                out.addPlain("");
                stack.pop_back();
                continue;
            }
            const Instance* callee = step.instance->callees[step.next++];
            const auto [state, isNew] = isDone.try_emplace(callee, false);
            if (isNew)
                stack.push_back({callee, 0});
            else if (!state->second)
                return refuse(callee->function->place,
                              "function '" + callee->function->name + "' calls itself");
        }
    }
}

std::string StageWriter::extensions() const
{
    std::string text;
    if (usesTextureLod_)
        text += "#extension GL_ARB_shader_texture_lod : enable\n";
    if (usesRectangles_)
        text += "#extension GL_ARB_texture_rectangle : enable\n";
    return text;
}

std::string StageWriter::declarations()
{
    LineWriter globals;
    declareGlobals(globals);
    LineWriter functions;
    declareFunctions(functions);
    std::string text;
    for (const auto& [key, helper] : helpers_)
        text += helper + "\n\n";
    text += records_.text();
    if (!globals.isEmpty())
        text += globals.text() + "\n";
    return text + functions.text();
}

std::string StageWriter::entryUniform(const Variable& parameter)
{
    const auto same =
        std::find_if(tree_.globals.begin(), tree_.globals.end(), [&](const Variable* global) {
            return global->name == parameter.name && global->type == parameter.type &&
                   isUniformGlobal(*global);
        });
    if (same != tree_.globals.end())
        return global(**same, parameter.place).text;
    entryUniforms_.push_back(&parameter);
    return names_.globals.try_emplace(&parameter, names_.names.global(parameter.name))
        .first->second;
}

void StageWriter::addUniforms(std::vector<Uniform>& uniforms)
{
    std::vector<const Variable*> used;
    for (const Variable* variable : tree_.globals) {
        const auto found = usedGlobals_.find(variable);
        const bool isState = !stateMatrix(variable->semantic).empty();
        if (found != usedGlobals_.end() && found->second.isUniform && !isState)
            used.push_back(variable);
    }
    used.insert(used.end(), entryUniforms_.begin(), entryUniforms_.end());
    for (const Variable* variable : used)
        addLeaves(uniforms, variable->type, variable->name, names_.globals[variable]);
}

/// GL knows no structs: what of them it calls uniforms are their fields.
void StageWriter::addLeaves(std::vector<Uniform>& uniforms, const Type& type,
                            const std::string& parameter, const std::string& name)
{
    if (type.scalar != Scalar::eRecord) {
        const auto same = [&](const Uniform& uniform) { return uniform.name == name; };
        if (uniforms.size() >= kMostUniforms)
            return;
        if (std::none_of(uniforms.begin(), uniforms.end(), same))
            uniforms.push_back({parameter, name, valueTypeOf(type), {}});
        return;
    }
    if (isArray(type)) {
        Type element = type;
        element.dims.clear();
        for (std::size_t i = 0; i < lengthOf(type) && uniforms.size() < kMostUniforms; ++i) {
            const std::string index = "[" + std::to_string(i) + "]";
            addLeaves(uniforms, element, parameter + index, name + index);
        }
        return;
    }
    for (const Field& field : type.record->fields)
        addLeaves(uniforms, field.type, parameter + "." + field.name,
                  name + "." + fieldName(*type.record, field.name));
}

} // namespace EffectCompiler
