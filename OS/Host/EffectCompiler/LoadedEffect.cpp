#include "OS/Host/EffectCompiler/LoadedEffect.h"

#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/DriverLog.h"
#include "OS/Host/EffectCompiler/EffectValues.h"
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/StateTables.h"
#include "OS/Host/EffectCompiler/Translator.h"

namespace EffectCompiler {
namespace {

/// A program state that says "none": "VertexShader = null".
bool isNoProgram(const State& state)
{
    return state.value &&
           ((state.value->kind == Expression::Kind::eName &&
             isSameName(state.value->text, "null")) ||
            (state.value->kind == Expression::Kind::eNumber && state.value->value == 0.0));
}

/// @return whether the pass has nothing but programs that can be translated
bool reportPrograms(const PassSyntax& pass, Messages& messages)
{
    bool isFine = true;
    for (const State& state : pass.states) {
        const ProgramKind kind = programKindOf(state.name);
        if (kind == ProgramKind::eNone || isNoProgram(state))
            continue;
        std::string fault;
        if (state.profile == "asm")
            fault = "assembler programs are not supported";
        else if (state.profile.empty())
            fault = state.name + " must be compiled, or null";
        else if (kind == ProgramKind::eOther)
            fault = state.name + " is not supported";
        else if (!state.function)
            fault = "undefined function '" + state.entry + "'";
        if (!fault.empty())
            messages.error(state.place, fault);
        isFine = isFine && fault.empty();
    }
    return isFine;
}

} // namespace

LoadedEffect::LoadedEffect(std::unique_ptr<SyntaxTree> tree, std::vector<std::string> files,
                           Messages& messages)
    : tree_(std::move(tree)), files_(std::move(files)), messageFiles_(messages.files())
{
    for (const Variable* variable : tree_->globals)
        globals_.try_emplace(variable->name, variable);
    ConstantEvaluator evaluator([this](std::string_view name) { return find(name); });
    for (const Variable* variable : tree_->globals) {
        if (!variable->isEffectParameter())
            continue;
        addParameter(*variable, messages);
        const bool hasValue =
            numbersOf(variable->type) != 0 || variable->type.scalar == Type::Scalar::eString;
        if (variable->initialiser && hasValue)
            parameters_.back().initial = valueOf(*variable->initialiser, variable->type, evaluator);
    }
    for (const TechniqueSyntax& syntax : tree_->techniques) {
        Technique technique{syntax.name, syntax.annotations, {}};
        for (const PassSyntax& pass : syntax.passes)
            technique.passes.push_back(describe(pass, messages));
        techniques_.push_back(std::move(technique));
    }
}

void LoadedEffect::addParameter(const Variable& variable, Messages& messages)
{
    Parameter parameter;
    parameter.name = variable.name;
    parameter.type = valueTypeOf(variable.type);
    if (!variable.semantic.empty())
        parameter.semantic = variable.semantic;
    parameter.annotations = variable.annotations;
    if (variable.states) {
        for (const State& state : *variable.states) {
            auto assignment = assignmentOf(
                state, [this](std::string_view name) { return find(name); }, messages);
            if (assignment)
                parameter.states.push_back(std::move(*assignment));
        }
    }
    parameters_.push_back(std::move(parameter));
}

Pass LoadedEffect::describe(const PassSyntax& syntax, Messages& messages)
{
    Pass pass;
    pass.name = syntax.name;
    pass.annotations = syntax.annotations;
    for (const State& state : syntax.states) {
        if (programKindOf(state.name) != ProgramKind::eNone) {
            describeProgram(state, pass, messages);
            continue;
        }
        auto assignment = assignmentOf(
            state, [this](std::string_view name) { return find(name); }, messages);
        if (assignment)
            pass.states.push_back(std::move(*assignment));
    }
    return pass;
}

void LoadedEffect::describeProgram(const State& state, Pass& pass, Messages& messages)
{
    if (isNoProgram(state))
        return;
    if (!state.value && state.profile != "asm" && !isKnownProfile(state.profile)) {
        messages.error(state.place, "unknown profile '" + state.profile + "'");
        hasUnknownProfile_ = true;
    }
    const ProgramKind kind = programKindOf(state.name);
    pass.hasVertexProgram |= kind == ProgramKind::eVertex;
    pass.hasFragmentProgram |= kind == ProgramKind::eFragment;
}

const Variable* LoadedEffect::find(std::string_view name) const
{
    const auto found = globals_.find(name);
    return found == globals_.end() ? nullptr : found->second;
}

Messages LoadedEffect::emptyMessages() const
{
    Messages messages;
    for (const std::string& file : messageFiles_)
        messages.addFile(file);
    return messages;
}

std::optional<ProgramText> LoadedEffect::translate(const PassSyntax& pass, int version,
                                                   Messages& messages) const
{
    if (!reportPrograms(pass, messages))
        return {};
    return EffectCompiler::translate(*tree_, pass, version, messages);
}

std::optional<ProgramText> LoadedEffect::translate(std::size_t technique, std::size_t pass,
                                                   int version, std::string& listing) const
{
    Messages messages = emptyMessages();
    std::optional<ProgramText> text;
    if (technique < tree_->techniques.size() && pass < tree_->techniques[technique].passes.size())
        text = translate(tree_->techniques[technique].passes[pass], version, messages);
    listing = messages.listing();
    return text;
}

bool LoadedEffect::validate(std::size_t technique, iProgramBuilder& builder,
                            std::string& listing) const
{
    listing.clear();
    if (technique >= tree_->techniques.size())
        return false;
    Messages messages = emptyMessages();
    bool isValid = true;
    for (const PassSyntax& pass : tree_->techniques[technique].passes) {
        const auto text = translate(pass, builder.glslVersion(), messages);
        std::string log;
        const bool isBuilt = text && builder.build(*text, log);
        if (text && !isBuilt) {
            addDriverLog(log, pass.place, messages);
            if (!messages.hasErrors())
                messages.error(pass.place, "the driver refuses the program");
        }
        isValid = isValid && isBuilt;
    }
    listing = messages.listing();
    return isValid;
}

} // namespace EffectCompiler
