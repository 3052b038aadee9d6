#include "OS/Host/EffectCompiler/StatementChecker.h"

#include "OS/Host/EffectCompiler/Flow.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <optional>
#include <unordered_set>
#include <utility>

namespace EffectCompiler {
namespace {

using Kind = Statement::Kind;
using Scalar = Type::Scalar;

std::string quoted(std::string_view text)
{
    return "'" + std::string(text) + "'";
}

/// The number that a "case" names.
std::optional<long long> wholeNumber(const Expression& expression)
{
    using Of = Expression::Kind;
    const auto operand = [&](std::size_t i) { return wholeNumber(*expression.operands[i]); };
    switch (expression.kind) {
    case Of::eNumber:
    case Of::eBool:
        return static_cast<long long>(expression.value);
    case Of::eCast:
        return operand(0);
    case Of::eUnary:
        if (expression.text == "-" && operand(0))
            return -*operand(0);
        return expression.text == "+" ? operand(0) : std::nullopt;
    case Of::eName:
        if (!expression.variable || !expression.variable->isConst ||
            !expression.variable->initialiser || !isScalar(expression.variable->type) ||
            expression.variable->initialiser->kind != Of::eNumber)
            return {};
        return wholeNumber(*expression.variable->initialiser);
    default:
        return {};
    }
}

} // namespace

void StatementChecker::checkFunction(Function& function)
{
    function_ = &function;
    hasReturn_ = false;
    expressions_.setFunction(&function);
    Scopes& scopes = expressions_.scopes();
    scopes.open();
    for (Variable* parameter : function.parameters) {
        if (!parameter->name.empty() && scopes.declare(parameter))
            messages_.error(parameter->place,
                            "parameter " + quoted(parameter->name) + " is defined twice");
    }
    check(*function.body);
    scopes.close();
    expressions_.setFunction(nullptr);
    checkEnd(function);
}

void StatementChecker::checkEnd(const Function& function)
{
    if (isVoid(function.result) || isError(function.result) || !reachesEnd(*function.body))
        return;
    if (!hasReturn_)
        messages_.error(function.place, "function " + quoted(function.name) + " returns no value");
    else
        messages_.warning(function.place,
                          "not all paths of function " + quoted(function.name) + " return a value");
}

void StatementChecker::checkInScope(Statement* statement)
{
    if (!statement)
        return;
    expressions_.scopes().open();
    check(*statement);
    expressions_.scopes().close();
}

void StatementChecker::check(Statement& statement)
{
    if (messages_.isFull())
        return;
    const bool isInSwitchBody = std::exchange(isInSwitchBody_, false);
    switch (statement.kind) {
    case Kind::eExpression:
        if (statement.expression)
            expressions_.check(*statement.expression);
        break;
    case Kind::eDeclare:
        for (Variable* variable : statement.variables)
            declare(*variable);
        break;
    case Kind::eBlock:
        expressions_.scopes().open();
        for (Statement* inner : statement.statements) {
            isInSwitchBody_ = isInSwitchBody;
            check(*inner);
        }
        isInSwitchBody_ = false;
        expressions_.scopes().close();
        break;
    case Kind::eIf:
        expressions_.checkCondition(statement.expression, "if");
        for (Statement* branch : statement.statements)
            checkInScope(branch);
        break;
    case Kind::eFor:
        checkFor(statement);
        break;
    case Kind::eWhile:
        expressions_.checkCondition(statement.expression, "while");
        checkLoop(statement);
        break;
    case Kind::eDo:
        checkLoop(statement);
        expressions_.checkCondition(statement.expression, "do");
        break;
    case Kind::eSwitch:
        checkSwitch(statement);
        break;
    case Kind::eCase:
    case Kind::eDefault:
        if (!isInSwitchBody)
            messages_.error(statement.place, "a case must stand in the body of a switch");
        else if (statement.expression)
            checkCase(statement);
        break;
    case Kind::eReturn:
        checkReturn(statement);
        break;
    case Kind::eBreak:
        if (loops_ + switches_ == 0)
            messages_.error(statement.place, "'break' outside of a loop or switch");
        break;
    case Kind::eContinue:
        if (loops_ == 0)
            messages_.error(statement.place, "'continue' outside of a loop");
        break;
    case Kind::eDiscard:
        break;
    }
}

void StatementChecker::declare(Variable& variable)
{
    Type& type = variable.type;
    if (type.scalar == Scalar::eVoid || type.scalar == Scalar::eSampler ||
        type.scalar == Scalar::eTexture || type.scalar == Scalar::eString ||
        (type.record && type.record->isInterface)) {
        messages_.error(variable.place,
                        "a local variable cannot be of type '" + nameOf(type) + "'");
        type = errorType();
    }
    if (variable.initialiser)
        expressions_.checkInitialiser(variable.initialiser, type);
    else if (variable.isConst)
        messages_.error(variable.place, "constant " + quoted(variable.name) + " needs a value");
    if (std::find(type.dims.begin(), type.dims.end(), 0) != type.dims.end()) {
        messages_.error(variable.place, "array " + quoted(variable.name) + " needs a size");
        type = errorType();
    }
    if (expressions_.scopes().declare(&variable))
        messages_.error(variable.place, quoted(variable.name) + " is defined twice");
}

void StatementChecker::checkLoop(Statement& statement)
{
    ++loops_;
    checkInScope(statement.body);
    --loops_;
}

void StatementChecker::checkFor(Statement& statement)
{
    expressions_.scopes().open();
    for (Statement* first : statement.statements)
        check(*first);
    if (statement.expression)
        expressions_.checkCondition(statement.expression, "for");
    if (statement.step)
        expressions_.check(*statement.step);
    checkLoop(statement);
    expressions_.scopes().close();
}

void StatementChecker::checkSwitch(Statement& statement)
{
    expressions_.checkAs(statement.expression, scalarType(Scalar::eInt), "in 'switch'");
    ++switches_;
    if (statement.body) {
        isInSwitchBody_ = true;
        check(*statement.body);
        isInSwitchBody_ = false;
        std::unordered_set<long long> seen;
        bool hasDefault = false;
        for (const Statement* inner : statement.body->statements) {
            const bool isTwice =
                inner->kind == Kind::eDefault ? std::exchange(hasDefault, true)
                : inner->kind == Kind::eCase && inner->expression->kind == Expression::Kind::eNumber
                    ? !seen.insert(static_cast<long long>(inner->expression->value)).second
                    : false;
            if (isTwice)
                messages_.error(inner->place, "this case is there twice");
        }
    }
    --switches_;
}

void StatementChecker::checkCase(Statement& statement)
{
    expressions_.checkAs(statement.expression, scalarType(Scalar::eInt), "in 'case'");
    const auto value = wholeNumber(*statement.expression);
    if (!value) {
        if (!isError(statement.expression->type))
            messages_.error(statement.place, "a case needs a constant whole number");
        return;
    }
    Expression& label = *statement.expression;
    label.kind = Expression::Kind::eNumber;
    label.value = static_cast<double>(*value);
    label.type = scalarType(Scalar::eInt);
    label.operands.clear();
}

void StatementChecker::checkReturn(Statement& statement)
{
    hasReturn_ = true;
    const Type& result = function_->result;
    if (!statement.expression) {
        if (!isVoid(result))
            messages_.error(statement.place,
                            "function " + quoted(function_->name) + " must return a value");
        return;
    }
    if (isVoid(result)) {
        expressions_.check(*statement.expression);
        if (!isVoid(statement.expression->type))
            messages_.error(statement.place,
                            "function " + quoted(function_->name) + " cannot return a value");
        return;
    }
    expressions_.checkAs(statement.expression, result, "in 'return'");
}

} // namespace EffectCompiler
