#include "OS/Host/EffectCompiler/StateValues.h"

#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/EffectValues.h"
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/StateTables.h"

#include <map>

namespace EffectCompiler {
namespace {

/// The names that may stand in one state's value, as constants.
class Enumerants
{
public:
    Enumerants(StateValues values, const FindGlobal& find) : values_(values), find_(find) {}

    const Variable* operator()(std::string_view name)
    {
        const auto value = findEnumerant(values_, name);
        if (!value)
            return find_(name);
        const auto [entry, isNew] = made_.try_emplace(std::string(name));
        Constant& made = entry->second;
        if (isNew) {
            made.number.value = *value;
            made.number.type.scalar = Type::Scalar::eInt;
            made.variable.type = made.number.type;
            made.variable.isConst = true;
            made.variable.initialiser = &made.number;
        }
        return &made.variable;
    }

private:
    struct Constant
    {
        Expression number;
        Variable variable;
    };
    StateValues values_;
    const FindGlobal& find_;
    std::map<std::string, Constant> made_;
};

Type typeOf(const StateInfo& info)
{
    Type type;
    type.scalar = info.scalar;
    type.columns = static_cast<std::uint8_t>(info.columns);
    type.isVector = info.columns > 1;
    return type;
}

/// The name that a reference is: "tex", or "tex[1]".
std::optional<std::string> referenceOf(const Expression& expression)
{
    if (expression.kind == Expression::Kind::eName)
        return expression.text;
    if (expression.kind != Expression::Kind::eIndex ||
        expression.operands[0]->kind != Expression::Kind::eName ||
        expression.operands[1]->kind != Expression::Kind::eNumber)
        return {};
    return expression.operands[0]->text + "[" +
           std::to_string(static_cast<long>(expression.operands[1]->value)) + "]";
}

/// The first name within that means nothing here.
const Expression* unknownName(const Expression& expression, Enumerants& names)
{
    if (expression.kind == Expression::Kind::eName)
        return names(expression.text) ? nullptr : &expression;
    for (const Expression* operand : expression.operands) {
        if (const Expression* found = unknownName(*operand, names))
            return found;
    }
    return nullptr;
}

bool isNull(const Expression& expression)
{
    return expression.kind == Expression::Kind::eName && isSameName(expression.text, "null");
}

/// "Texture = <image>"
std::optional<Value> objectValue(const State& state, const FindGlobal& find, Messages& messages)
{
    Value value;
    value.type.base = BaseType::eTexture;
    value.type.texture = TextureKind::eAny;
    value.type.name = "texture";
    const Expression& expression = *state.value;
    const auto name = referenceOf(expression);
    if (isNull(expression) ||
        (expression.kind == Expression::Kind::eNumber && expression.value == 0.0))
        return value;
    const Variable* variable = name ? find(name->substr(0, name->find('['))) : nullptr;
    if (!variable || (variable->type.scalar != Type::Scalar::eTexture &&
                      variable->type.scalar != Type::Scalar::eSampler)) {
        messages.error(expression.place, "the value of " + state.name + " is no texture" +
                                             (name ? ": '" + *name + "'" : ""));
        return {};
    }
    value.type = valueTypeOf(variable->type);
    value.text = *name;
    return value;
}

std::optional<Value> numericValue(const State& state, const StateInfo* info, const FindGlobal& find,
                                  Messages& messages)
{
    const Expression& expression = *state.value;
    Enumerants names(info ? info->values : StateValues::ePlain, find);
    if (const Expression* unknown = info ? unknownName(expression, names) : nullptr) {
        messages.error(unknown->place, "'" + unknown->text + "' is no value of " + state.name);
        return {};
    }
    ConstantEvaluator evaluator([&](std::string_view name) { return names(name); });
    Value value;
    auto constant = info ? evaluator.evaluateAs(expression, typeOf(*info)) : std::nullopt;
    if (!constant)
        constant = evaluator.evaluate(expression);
    if (constant && constant->type.scalar == Type::Scalar::eVoid) { // a list
        constant->type.scalar = Type::Scalar::eFloat;
        constant->type.dims = {static_cast<int>(constant->numbers.size())};
    }
    if (constant) {
        value.type = valueTypeOf(constant->type);
        value.numbers = std::move(constant->numbers);
        return value;
    }
    if (expression.kind == Expression::Kind::eString) {
        value.type.base = BaseType::eString;
        value.type.name = "string";
        value.text = expression.text;
        return value;
    }
    if (expression.kind == Expression::Kind::eName) { // a parameter, or what only the host knows
        const Variable* variable = find(expression.text);
        value.type = variable ? valueTypeOf(variable->type) : ValueType();
        value.text = expression.text;
        return value;
    }
    messages.warning(state.place, "the value of " + state.name + " is not constant");
    return {};
}

} // namespace

std::optional<StateAssignment> assignmentOf(const State& state, const FindGlobal& find,
                                            Messages& messages)
{
    const StateInfo* info = findState(state.name);
    if (!info)
        messages.warning(state.place, "unknown state '" + state.name + "'");
    if (!state.value) {
        if (info)
            messages.error(state.place, state.name + " takes no program");
        return {};
    }
    auto value = info && info->values == StateValues::eTexture
                     ? objectValue(state, find, messages)
                     : numericValue(state, info, find, messages);
    if (!value)
        return {};
    return StateAssignment{state.name, state.index, std::move(*value)};
}

} // namespace EffectCompiler
