#include "OS/Host/EffectCompiler/SamplerKinds.h"

#include "OS/Host/EffectCompiler/Intrinsics.h"
#include "OS/Host/EffectCompiler/Walk.h"

#include <unordered_map>
#include <vector>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;

bool isSamplerVariable(const Variable* variable)
{
    return variable && variable->type.scalar == Type::Scalar::eSampler;
}

class Inference
{
public:
    explicit Inference(Messages& messages) : messages_(messages) {}

    void read(const Statement* body)
    {
        walk(body, [this](const Expression& expression) { read(expression); });
    }

    void readProgram(const State& state)
    {
        std::size_t next = 0;
        for (Variable* parameter : state.function->parameters) {
            const bool takes = parameter->isUniform || isSamplerVariable(parameter);
            if (takes && next < state.arguments.size())
                join(rootOf(*state.arguments[next++]).variable, parameter);
        }
    }

    /// Carries what is known along the calls until nothing changes.
    void spread()
    {
        for (bool hasChanged = true; hasChanged;) {
            hasChanged = false;
            for (const auto& [left, right] : pairs_) {
                hasChanged = give(*left, right->type.texture) || hasChanged;
                hasChanged = give(*right, left->type.texture) || hasChanged;
            }
        }
    }

private:
    void read(const Expression& call)
    {
        if (call.intrinsic && !call.operands.empty()) {
            const Variable* sampler = rootOf(*call.operands[0]).variable;
            const auto matched = matchIntrinsic(*call.intrinsic, typesOf(call));
            if (isSamplerVariable(sampler) && matched)
                give(*const_cast<Variable*>(sampler), matched->parameters[0].texture);
        }
        if (!call.function)
            return;
        const std::size_t first = call.kind == Kind::eMethodCall ? 1 : 0;
        for (std::size_t i = 0; i < call.function->parameters.size(); ++i)
            join(rootOf(*call.operands[first + i]).variable, call.function->parameters[i]);
    }

    static std::vector<Type> typesOf(const Expression& call)
    {
        std::vector<Type> types;
        for (const Expression* operand : call.operands)
            types.push_back(operand->type);
        return types;
    }

    void join(const Variable* argument, Variable* parameter)
    {
        if (isSamplerVariable(argument) && isSamplerVariable(parameter))
            pairs_.emplace_back(const_cast<Variable*>(argument), parameter);
    }

    bool give(Variable& sampler, TextureKind kind)
    {
        if (kind == TextureKind::eAny || kind == sampler.type.texture)
            return false;
        if (sampler.type.texture == TextureKind::eAny) {
            sampler.type.texture = kind;
            return true;
        }
        Type other = sampler.type;
        other.texture = kind;
        messages_.error(sampler.place, "'" + sampler.name + "' is used as " + nameOf(sampler.type) +
                                           " and as " + nameOf(other));
        return false;
    }

    Messages& messages_;
    std::vector<std::pair<Variable*, Variable*>> pairs_;
};

} // namespace

void inferSamplerKinds(SyntaxTree& tree, Messages& messages)
{
    Inference inference(messages);
    for (const Function* function : tree.functions)
        inference.read(function->body);
    for (const TechniqueSyntax& technique : tree.techniques) {
        for (const PassSyntax& pass : technique.passes) {
            for (const State& state : pass.states) {
                if (state.function)
                    inference.readProgram(state);
            }
        }
    }
    inference.spread();
    for (Variable& variable : tree.variables) {
        if (isSamplerVariable(&variable) && variable.type.texture == TextureKind::eAny)
            variable.type.texture = TextureKind::e2D;
    }
}

} // namespace EffectCompiler
