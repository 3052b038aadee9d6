#include "OS/Host/EffectCompiler/ExpressionChecker.h"

#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <cmath>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;

std::string quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

std::string typeText(const Type& type)
{
    return "'" + nameOf(type) + "'";
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> list)
{
    return std::find(list.begin(), list.end(), text) != list.end();
}

/// A number's value as a number of another type.
double valueAs(double value, Scalar scalar)
{
    if (scalar == Scalar::eBool)
        return value != 0.0 ? 1.0 : 0.0;
    return scalar == Scalar::eFloat ? value : std::trunc(value);
}

} // namespace

Expression* ExpressionChecker::make(Kind kind, SourcePlace place)
{
    Expression& made = tree_.expressions.emplace_back();
    made.kind = kind;
    made.place = place;
    return &made;
}

Expression* ExpressionChecker::cast(Expression* operand, const Type& type)
{
    Expression* made = make(Kind::eCast, operand->place);
    made->castType = made->type = type;
    made->operands = {operand};
    return made;
}

void ExpressionChecker::fail(Expression& expression, const std::string& text)
{
    if (!text.empty()) // else it was said already
        messages_.error(expression.place, text);
    expression.type = errorType();
    expression.isLvalue = true; // says nothing more of it
}

void ExpressionChecker::check(Expression& expression)
{
    switch (expression.kind) {
    case Kind::eNumber:
    case Kind::eBool:
        break;
    case Kind::eString:
        expression.type = scalarType(Scalar::eString);
        break;
    case Kind::eName:
        return checkName(expression);
    case Kind::eUnary:
        return checkUnary(expression);
    case Kind::ePostfix:
        return checkStep(expression);
    case Kind::eBinary:
        return checkBinary(expression);
    case Kind::eAssign:
        return checkAssign(expression);
    case Kind::eConditional:
        return checkConditional(expression);
    case Kind::eCall:
        return checkCall(expression);
    case Kind::eMethodCall:
        return checkMethodCall(expression);
    case Kind::eConstructor:
        return checkConstructor(expression);
    case Kind::eCast:
        return checkCast(expression);
    case Kind::eIndex:
        return checkIndex(expression);
    case Kind::eMember:
        return checkMember(expression);
    case Kind::eList:
        return fail(expression, "a list in braces can only initialise");
    }
    if (expression.kind == Kind::eBool)
        expression.type = scalarType(Scalar::eBool);
}

void ExpressionChecker::checkAs(Expression*& expression, const Type& type, std::string_view where)
{
    check(*expression);
    convert(expression, type, where);
}

void ExpressionChecker::checkCondition(Expression*& expression, std::string_view what)
{
    check(*expression);
    const Type& type = expression->type;
    if (!isError(type) && (!isNumeric(type) || componentsOf(type) > 1))
        fail(*expression, "the condition of '" + std::string(what) + "' must be one value, not " +
                              typeText(type));
    convert(expression, scalarType(Scalar::eBool), "in condition");
}

void ExpressionChecker::convert(Expression*& expression, const Type& type, std::string_view where)
{
    const Type& from = expression->type;
    if (from == type || isError(from) || isError(type))
        return;
    if (!converts(from, type)) {
        fail(*expression, "cannot convert from " + typeText(from) + " to " + typeText(type) + " " +
                              std::string(where));
        return;
    }
    if (!isNumeric(type))
        return; // an interface, a sampler without dimension: what it is stays visible
    if (expression->kind == Kind::eNumber && type.scalar != Scalar::eBool) {
        expression->value = valueAs(expression->value, type.scalar);
        expression->type = scalarType(type.scalar);
    }
    if (expression->type != type)
        expression = cast(expression, type);
}

void ExpressionChecker::checkName(Expression& expression)
{
    const std::string& name = expression.text;
    const Variable* variable = scopes_.find(name);
    const Record* owner = function_ ? function_->owner : nullptr;
    if (!variable && owner && Declarations::field(*owner, name))
        return becomeField(expression);
    if (!variable && owner && name == "this")
        variable = function_->self;
    if (!variable)
        variable = declarations_.global(name);
    if (!variable || hidden_.contains(variable))
        return fail(expression, "undefined variable " + quoted(name));
    expression.variable = variable;
    expression.type = variable->type;
    expression.isLvalue = true;
}

/// Makes "x" in a method "this.x".
void ExpressionChecker::becomeField(Expression& expression)
{
    Expression* object = make(Kind::eName, expression.place);
    object->text = "this";
    expression.kind = Kind::eMember;
    expression.operands = {object};
    checkMember(expression);
}

void ExpressionChecker::checkUnary(Expression& expression)
{
    const std::string& sign = expression.text;
    if (sign == "++" || sign == "--")
        return checkStep(expression);
    Expression*& operand = expression.operands[0];
    check(*operand);
    const Type type = operand->type;
    if (isError(type))
        return fail(expression, {});
    const bool isBits = sign == "~";
    if (!isNumeric(type) || (isBits && type.scalar == Scalar::eFloat))
        return fail(expression, "operator '" + sign + "' cannot take " + typeText(type));
    const Scalar scalar = sign == "!" ? Scalar::eBool : std::max(type.scalar, Scalar::eInt);
    convert(operand, withScalar(type, scalar), "in operand");
    expression.type = withScalar(type, scalar);
}

void ExpressionChecker::checkStep(Expression& expression)
{
    Expression& operand = *expression.operands[0];
    check(operand);
    if (isError(operand.type))
        return fail(expression, {});
    if (!isNumeric(operand.type) || operand.type.scalar == Scalar::eBool)
        return fail(expression,
                    "operator '" + expression.text + "' cannot take " + typeText(operand.type));
    write(operand);
    expression.type = operand.type;
}

void ExpressionChecker::checkBinary(Expression& expression)
{
    check(*expression.operands[0]);
    check(*expression.operands[1]);
    const std::string& sign = expression.text;
    if (sign == ",") {
        expression.type = expression.operands[1]->type;
        return;
    }
    const Type& left = expression.operands[0]->type;
    const Type& right = expression.operands[1]->type;
    if (isError(left) || isError(right))
        return fail(expression, {});
    if (isOneOf(sign, {"&&", "||"}))
        return checkLogic(expression);
    if (isOneOf(sign, {"==", "!=", "<", ">", "<=", ">="}))
        return checkComparison(expression);
    if (isOneOf(sign, {"&", "|", "^", "<<", ">>"}))
        return checkBits(expression);
    checkArithmetic(expression);
}

void ExpressionChecker::checkArithmetic(Expression& expression)
{
    auto& operands = expression.operands;
    const auto common = commonType(operands[0]->type, operands[1]->type);
    const bool isRemainderOfMatrix = expression.text == "%" && common && common->isMatrix;
    if (!common || isRemainderOfMatrix)
        return fail(expression, "operator '" + expression.text + "' cannot take " +
                                    typeText(operands[0]->type) + " and " +
                                    typeText(operands[1]->type));
    convert(operands[0], *common, "in operand");
    convert(operands[1], *common, "in operand");
    expression.type = *common;
}

void ExpressionChecker::checkComparison(Expression& expression)
{
    checkArithmetic(expression);
    if (isError(expression.type))
        return;
    if (isMatrix(expression.type))
        return fail(expression, "operator '" + expression.text + "' cannot compare matrices");
    expression.type.scalar = Scalar::eBool;
}

void ExpressionChecker::checkLogic(Expression& expression)
{
    auto& operands = expression.operands;
    const auto common = commonType(operands[0]->type, operands[1]->type);
    if (!common || common->isMatrix)
        return checkArithmetic(expression); // which says what is wrong
    const Type type = withScalar(*common, Scalar::eBool);
    convert(operands[0], type, "in operand");
    convert(operands[1], type, "in operand");
    expression.type = type;
}

void ExpressionChecker::checkBits(Expression& expression)
{
    const bool isFloat = expression.operands[0]->type.scalar == Scalar::eFloat ||
                         expression.operands[1]->type.scalar == Scalar::eFloat;
    checkArithmetic(expression);
    if (!isError(expression.type) && (isFloat || expression.type.isMatrix))
        fail(expression, "operator '" + expression.text + "' needs whole numbers");
}

void ExpressionChecker::checkAssign(Expression& expression)
{
    Expression& target = *expression.operands[0];
    Expression*& value = expression.operands[1];
    check(target);
    check(*value);
    if (isError(target.type) || isError(value->type))
        return fail(expression, {});
    if (!write(target))
        return fail(expression, {});
    const bool isInterface = target.type.record && target.type.record->isInterface;
    if (target.type.scalar == Scalar::eSampler || target.type.scalar == Scalar::eTexture ||
        isInterface)
        return fail(expression, "a " + nameOf(target.type) + " cannot be assigned");
    expression.type = target.type;
    if (expression.text == "=")
        return convert(value, target.type, "in assignment");

    // "a op= b": b becomes what both have in common; the result is converted back.
    const std::string sign = expression.text.substr(0, expression.text.size() - 1);
    const bool isBits = isOneOf(sign, {"&", "|", "^", "<<", ">>"});
    const auto common = commonType(target.type, value->type);
    if (!common || !converts(*common, target.type) || (sign == "%" && common->isMatrix) ||
        (isBits && (common->scalar == Scalar::eFloat || common->isMatrix)))
        return fail(expression, "operator '" + expression.text + "' cannot take " +
                                    typeText(target.type) + " and " + typeText(value->type));
    convert(value, *common, "in assignment");
}

void ExpressionChecker::checkConditional(Expression& expression)
{
    auto& operands = expression.operands;
    for (Expression* operand : operands)
        check(*operand);
    const Type condition = operands[0]->type;
    const Type first = operands[1]->type;
    const Type second = operands[2]->type;
    if (isError(condition) || isError(first) || isError(second))
        return fail(expression, {});
    if (!isNumeric(condition) || (isMatrix(condition) && componentsOf(condition) > 1))
        return fail(expression, "the condition of '?:' cannot be " + typeText(condition));
    if (first == second && !isNumeric(first)) {
        if (!isRecord(first) || first.record->isInterface || componentsOf(condition) > 1)
            return fail(expression, "'?:' cannot choose between values of " + typeText(first));
        convert(operands[0], scalarType(Scalar::eBool), "in condition");
        expression.type = first;
        return;
    }
    auto common = commonType(first, second);
    if (common && first.scalar == Scalar::eBool && second.scalar == Scalar::eBool)
        common->scalar = Scalar::eBool;
    if (common && isVector(condition) && condition.columns > 1 && !common->isMatrix) {
        const int columns =
            isScalar(*common) ? condition.columns : std::min(condition.columns, common->columns);
        common = vectorType(common->scalar, columns);
        convert(operands[0], vectorType(Scalar::eBool, columns), "in condition");
    } else if (common && componentsOf(condition) == 1) {
        convert(operands[0], scalarType(Scalar::eBool), "in condition");
    } else {
        return fail(expression, "'?:' cannot choose between " + typeText(first) + " and " +
                                    typeText(second) + " by " + typeText(condition));
    }
    convert(operands[1], *common, "in '?:'");
    convert(operands[2], *common, "in '?:'");
    expression.type = *common;
}

void ExpressionChecker::checkIndex(Expression& expression)
{
    if (checkState(expression))
        return;
    Expression& object = *expression.operands[0];
    Expression*& index = expression.operands[1];
    check(object);
    check(*index);
    if (isError(object.type) || isError(index->type))
        return fail(expression, {});
    const Type element = elementOf(object.type);
    if (isError(element))
        return fail(expression, typeText(object.type) + " has no elements");
    if (!isNumeric(index->type) || componentsOf(index->type) > 1)
        return fail(expression, "an index must be one number, not " + typeText(index->type));
    convert(index, scalarType(Scalar::eInt), "in index");
    const int count = isArray(object.type)    ? object.type.dims[0]
                      : isMatrix(object.type) ? object.type.rows
                                              : object.type.columns;
    const auto number = ConstantEvaluator([](std::string_view) {
                            return nullptr;
                        }).evaluateInt(*index); // of literals
    if (number && (*number < 0 || *number >= count))
        return fail(expression,
                    "index " + std::to_string(*number) + " is outside of " + typeText(object.type));
    expression.type = element;
    expression.isLvalue = object.isLvalue;
}

bool ExpressionChecker::write(Expression& target)
{
    const Expression* root = &target;
    while (root->kind == Kind::eIndex || root->kind == Kind::eMember)
        root = root->operands[0];
    if (!target.isLvalue) {
        messages_.error(target.place, "this expression cannot be assigned to");
        return false;
    }
    const Variable* variable = root->kind == Kind::eName ? root->variable : nullptr;
    if (!variable)
        return isError(target.type); // a piece of what had a fault already
    if (variable->isConst) {
        messages_.error(target.place, quoted(variable->name) + " is constant");
        return false;
    }
    const_cast<Variable*>(variable)->isWritten = true;
    return true;
}

} // namespace EffectCompiler
