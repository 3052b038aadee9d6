#include "OS/Host/EffectCompiler/Flow.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Kind = Statement::Kind;

/// Whether a "break" in it leaves the loop or switch that it is the body of.
bool breaksOut(const Statement& statement)
{
    switch (statement.kind) {
    case Kind::eBreak:
        return true;
    case Kind::eBlock:
    case Kind::eIf:
        return std::any_of(statement.statements.begin(), statement.statements.end(),
                           [](const Statement* inner) { return inner && breaksOut(*inner); });
    default:
        return false;
    }
}

bool isAlways(const Expression* condition)
{
    if (!condition)
        return true;
    if (condition->kind == Expression::Kind::eCast)
        return isAlways(condition->operands[0]);
    const bool isLiteral =
        condition->kind == Expression::Kind::eBool || condition->kind == Expression::Kind::eNumber;
    return isLiteral && condition->value != 0.0;
}

bool leavesSwitch(const Statement& body)
{
    bool hasDefault = false;
    for (const Statement* inner : body.statements)
        hasDefault = hasDefault || inner->kind == Kind::eDefault;
    return !hasDefault || breaksOut(body) || reachesEnd(body);
}

} // namespace

bool reachesEnd(const Statement& statement)
{
    switch (statement.kind) {
    case Kind::eReturn:
    case Kind::eBreak:
    case Kind::eContinue:
    case Kind::eDiscard:
        return false;
    case Kind::eBlock: {
        bool reaches = true;
        for (const Statement* inner : statement.statements) {
            const bool isLabel = inner->kind == Kind::eCase || inner->kind == Kind::eDefault;
            reaches = isLabel || (reaches && reachesEnd(*inner));
        }
        return reaches;
    }
    case Kind::eIf:
        return statement.statements.size() < 2 || !statement.statements[1] ||
               reachesEnd(*statement.statements[0]) || reachesEnd(*statement.statements[1]);
    case Kind::eFor:
    case Kind::eWhile:
    case Kind::eDo:
        return !isAlways(statement.expression) || !statement.body || breaksOut(*statement.body);
    case Kind::eSwitch:
        return !statement.body || leavesSwitch(*statement.body);
    default:
        return true;
    }
}

} // namespace EffectCompiler
