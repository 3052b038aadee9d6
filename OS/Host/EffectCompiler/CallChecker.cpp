#include "OS/Host/EffectCompiler/ExpressionChecker.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <limits>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;
using Direction = Variable::Direction;

/// What each argument of a call costs, for one overload; empty where it cannot take them.
using Costs = std::vector<int>;

std::string quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

std::optional<int> costOf(const Variable& parameter, const Type& argument)
{
    const auto in = conversionCost(argument, parameter.type);
    const auto out = conversionCost(parameter.type, argument);
    switch (parameter.direction) {
    case Direction::eIn:
        return in;
    case Direction::eOut:
        return out;
    case Direction::eInOut:
        break;
    }
    return in && out ? std::optional<int>(std::max(*in, *out)) : std::nullopt;
}

bool takesCount(const Function& function, std::size_t count)
{
    const auto& parameters = function.parameters;
    const auto isOptional = [](const Variable* parameter) { return parameter->initialiser; };
    return count <= parameters.size() &&
           std::all_of(parameters.begin() + static_cast<std::ptrdiff_t>(count), parameters.end(),
                       isOptional);
}

std::optional<Costs> costsOf(const Function& function, const std::vector<Expression*>& operands,
                             std::size_t first)
{
    if (!takesCount(function, operands.size() - first))
        return {};
    Costs costs;
    for (std::size_t i = first; i < operands.size(); ++i) {
        const auto cost = costOf(*function.parameters[i - first], operands[i]->type);
        if (!cost)
            return {};
        costs.push_back(*cost);
    }
    return costs;
}

/// From the left, each argument strikes the overloads that take it less well than another.
/// @return the indices of those that stay
std::vector<std::size_t> bestOf(const std::vector<std::optional<Costs>>& overloads)
{
    std::vector<std::size_t> stay;
    std::size_t arguments = 0;
    for (std::size_t i = 0; i < overloads.size(); ++i) {
        if (overloads[i]) {
            stay.push_back(i);
            arguments = overloads[i]->size();
        }
    }
    for (std::size_t argument = 0; argument < arguments; ++argument) {
        int best = std::numeric_limits<int>::max();
        for (const std::size_t i : stay)
            best = std::min(best, (*overloads[i])[argument]);
        std::erase_if(stay, [&](std::size_t i) { return (*overloads[i])[argument] != best; });
    }
    return stay;
}

} // namespace

bool ExpressionChecker::checkOperands(Expression& expression)
{
    bool isFit = true;
    for (Expression* operand : expression.operands) {
        check(*operand);
        isFit = isFit && !isError(operand->type);
    }
    return isFit;
}

std::string ExpressionChecker::argumentTypes(const Expression& expression,
                                             std::size_t firstArgument) const
{
    std::string text = "(";
    for (std::size_t i = firstArgument; i < expression.operands.size(); ++i)
        text += (i > firstArgument ? ", " : "") + nameOf(expression.operands[i]->type);
    return text + ")";
}

void ExpressionChecker::checkCall(Expression& expression)
{
    const bool isFit = checkOperands(expression);
    const std::string& name = expression.text;

    // In a method, its siblings come first.
    if (function_ && function_->owner) {
        const auto methods = Declarations::methods(*function_->owner, name);
        if (!methods.empty()) {
            Expression* object = make(Kind::eName, expression.place);
            object->text = "this";
            check(*object);
            expression.kind = Kind::eMethodCall;
            expression.operands.insert(expression.operands.begin(), object);
            return isFit ? callFunction(expression, methods, 1) : fail(expression, {});
        }
    }
    std::string_view intrinsic = name;
    const int width = textureResultWidth(intrinsic);
    const bool isKnown =
        name == "mul" || name == "transpose" || !intrinsicsNamed(intrinsic).empty();
    const auto& functions = declarations_.functions(name);
    if (functions.empty() && !isKnown)
        return fail(expression, "undefined function " + quoted(name));
    if (!isFit)
        return fail(expression, {});

    const auto takesIt = [&](const Function* function) {
        return costsOf(*function, expression.operands, 0).has_value();
    };
    if (!isKnown || std::any_of(functions.begin(), functions.end(), takesIt))
        return callFunction(expression, functions, 0);
    if (name == "mul")
        return callMul(expression);
    if (name == "transpose")
        return callTranspose(expression);
    if (!callIntrinsic(expression, intrinsic, width))
        fail(expression, "no function " + quoted(name) + " takes " + argumentTypes(expression, 0));
}

void ExpressionChecker::checkMethodCall(Expression& expression)
{
    const bool isFit = checkOperands(expression);
    const Type object = expression.operands[0]->type;
    if (isError(object))
        return fail(expression, {});
    if (!isRecord(object))
        return fail(expression, "'" + nameOf(object) + "' has no methods");
    const auto methods = Declarations::methods(*object.record, expression.text);
    if (methods.empty())
        return fail(expression,
                    "'" + nameOf(object) + "' has no method " + quoted(expression.text));
    return isFit ? callFunction(expression, methods, 1) : fail(expression, {});
}

void ExpressionChecker::callFunction(Expression& expression,
                                     const std::vector<Function*>& overloads,
                                     std::size_t firstArgument)
{
    const std::string name = quoted(expression.text);
    const std::size_t count = expression.operands.size() - firstArgument;
    if (overloads.size() == 1 && !takesCount(*overloads[0], count))
        return fail(expression, "function " + name + " takes " +
                                    std::to_string(overloads[0]->parameters.size()) +
                                    " arguments, not " + std::to_string(count));
    const Function* chosen = overloads[0];
    if (overloads.size() > 1) {
        std::vector<std::optional<Costs>> costs;
        for (const Function* function : overloads)
            costs.push_back(costsOf(*function, expression.operands, firstArgument));
        const auto best = bestOf(costs);
        if (best.size() != 1)
            return fail(expression, (best.empty() ? "no function " + name + " takes "
                                                  : "several functions " + name + " take ") +
                                        argumentTypes(expression, firstArgument));
        chosen = overloads[best[0]];
    }
    if (!chosen->body && !(chosen->owner && chosen->owner->isInterface))
        return fail(expression, "function " + name + " is declared but not defined");
    expression.function = chosen;
    expression.type = chosen->result;
    passArguments(expression, *chosen, firstArgument);
}

void ExpressionChecker::passArguments(Expression& expression, const Function& function,
                                      std::size_t firstArgument)
{
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const Variable& parameter = *function.parameters[i];
        if (firstArgument + i == expression.operands.size()) {
            expression.operands.push_back(parameter.initialiser); // checked where it stands
            continue;
        }
        Expression*& argument = expression.operands[firstArgument + i];
        const std::string where =
            "in argument " + std::to_string(i + 1) + " of '" + function.name + "'";
        if (parameter.direction == Direction::eIn)
            convert(argument, parameter.type, where);
        else
            passOut(*argument, parameter.type, parameter.direction == Direction::eInOut, where);
    }
}

void ExpressionChecker::passOut(Expression& argument, const Type& parameter, bool isRead,
                                const std::string& where)
{
    const Type type = argument.type;
    if (isError(type) || !write(argument))
        return;
    if (!converts(parameter, type))
        return fail(argument, "cannot convert from '" + nameOf(parameter) + "' to '" +
                                  nameOf(type) + "' " + where);
    if (isRead && !converts(type, parameter))
        return fail(argument, "cannot convert from '" + nameOf(type) + "' to '" +
                                  nameOf(parameter) + "' " + where);
}

bool ExpressionChecker::callIntrinsic(Expression& expression, std::string_view name, int width)
{
    std::vector<Type> arguments;
    for (const Expression* operand : expression.operands)
        arguments.push_back(operand->type);
    std::vector<IntrinsicCall> calls;
    std::vector<std::optional<Costs>> costs;
    for (const Intrinsic& intrinsic : intrinsicsNamed(name)) {
        auto call = matchIntrinsic(intrinsic, arguments);
        if (!call)
            continue;
        Costs each;
        for (std::size_t i = 0; i < arguments.size(); ++i)
            each.push_back(conversionCost(arguments[i], call->parameters[i]).value_or(0));
        costs.emplace_back(std::move(each));
        calls.push_back(std::move(*call));
    }
    const auto best = bestOf(costs);
    if (best.empty())
        return false;
    const IntrinsicCall& call = calls[best[0]];
    expression.intrinsic = call.intrinsic;
    expression.type = call.result;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::string where =
            "in argument " + std::to_string(i + 1) + " of " + quoted(expression.text);
        if (call.isOut[i])
            passOut(*expression.operands[i], call.parameters[i], false, where);
        else
            convert(expression.operands[i], call.parameters[i], where);
    }
    if (width > 0 && width < 4)
        narrowResult(expression, width);
    return true;
}

/// Of "h3tex2D": makes the call a cast of it.
void ExpressionChecker::narrowResult(Expression& expression, int width)
{
    Expression* call = make(Kind::eCall, expression.place);
    *call = expression;
    expression.kind = Kind::eCast;
    expression.intrinsic = nullptr;
    expression.operands = {call};
    expression.castType = expression.type =
        width == 1 ? scalarType(Scalar::eFloat) : vectorType(Scalar::eFloat, width);
}

void ExpressionChecker::callTranspose(Expression& expression)
{
    auto& operands = expression.operands;
    if (operands.size() != 1 || !isNumeric(operands[0]->type) || !isMatrix(operands[0]->type))
        return fail(expression, "no function 'transpose' takes " + argumentTypes(expression, 0));
    const Type type = operands[0]->type;
    expression.type = matrixType(type.scalar, type.columns, type.rows);
}

void ExpressionChecker::callMul(Expression& expression)
{
    auto& operands = expression.operands;
    const auto refuse = [&] {
        fail(expression, "no function 'mul' takes " + argumentTypes(expression, 0));
    };
    if (operands.size() != 2 || !isNumeric(operands[0]->type) || !isNumeric(operands[1]->type))
        return refuse();
    Type left = withScalar(operands[0]->type, Scalar::eFloat);
    Type right = withScalar(operands[1]->type, Scalar::eFloat);
    Type result = scalarType(Scalar::eFloat);
    const auto vector = [](int columns) { return vectorType(Scalar::eFloat, columns); };
    if (isScalar(left) || isScalar(right)) {
        result = isScalar(left) ? right : left;
    } else if (isVector(left) && isVector(right)) {
        left = right = vector(std::min(left.columns, right.columns));
    } else if (isVector(left) && left.columns >= right.rows) {
        left = vector(right.rows);
        result = vector(right.columns);
    } else if (isVector(right) && right.columns >= left.columns) {
        right = vector(left.columns);
        result = vector(left.rows);
    } else if (isMatrix(left) && isMatrix(right) && left.columns == right.rows) {
        result = matrixType(Scalar::eFloat, left.rows, right.columns);
    } else {
        return refuse();
    }
    convert(operands[0], left, "in argument 1 of 'mul'");
    convert(operands[1], right, "in argument 2 of 'mul'");
    expression.type = result;
}

void ExpressionChecker::checkConstructor(Expression& expression)
{
    Type type = expression.castType;
    expression.type = type;
    if (!checkOperands(expression))
        return fail(expression, {});
    auto& operands = expression.operands;
    if (operands.size() == 1 && casts(operands[0]->type, type)) {
        expression.kind = Kind::eCast;
        return;
    }
    if (!isNumeric(type))
        return fail(expression,
                    "'" + nameOf(type) + "' cannot be made of " + argumentTypes(expression, 0));
    int components = 0;
    for (std::size_t i = 0; i < operands.size(); ++i) {
        if (!isNumeric(operands[i]->type))
            return fail(expression,
                        "'" + nameOf(type) + "' cannot be made of " + argumentTypes(expression, 0));
        components = std::min(components + componentsOf(operands[i]->type), 1000);
    }
    if (components != componentsOf(type))
        return fail(expression, "'" + nameOf(type) + "' needs " +
                                    std::to_string(componentsOf(type)) + " values, not " +
                                    std::to_string(components));
    for (Expression*& operand : operands)
        convert(operand, withScalar(operand->type, type.scalar), "in constructor");
}

void ExpressionChecker::checkCast(Expression& expression)
{
    expression.type = expression.castType;
    Expression*& operand = expression.operands[0];
    if (operand->kind == Kind::eList)
        return checkInitialiser(operand, expression.type);
    check(*operand);
    if (isError(operand->type))
        return fail(expression, {});
    if (!casts(operand->type, expression.castType))
        fail(expression, "cannot cast from '" + nameOf(operand->type) + "' to '" +
                             nameOf(expression.castType) + "'");
}

} // namespace EffectCompiler
