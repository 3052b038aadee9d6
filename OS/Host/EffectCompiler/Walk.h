#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

namespace EffectCompiler {

/// Calls visit(Expression&) for all of an expression, operands before what they belong to.
template <class Visit>
void walk(Expression* expression, const Visit& visit)
{
    if (!expression)
        return;
    for (Expression* operand : expression->operands)
        walk(operand, visit);
    visit(*expression);
}

/// The same for all expressions of a statement, in the order they stand in.
template <class Visit>
void walk(const Statement* statement, const Visit& visit)
{
    if (!statement)
        return;
    for (const Variable* variable : statement->variables)
        walk(variable->initialiser, visit);
    if (statement->kind == Statement::Kind::eFor) {
        for (const Statement* first : statement->statements)
            walk(first, visit);
        walk(statement->expression, visit);
        walk(statement->body, visit);
        walk(statement->step, visit);
        return;
    }
    walk(statement->expression, visit);
    for (const Statement* inner : statement->statements)
        walk(inner, visit);
    walk(statement->body, visit);
}

/// Where an lvalue begins: the name in "a.b[i].x".
inline const Expression& rootOf(const Expression& expression)
{
    const Expression* root = &expression;
    while (root->kind == Expression::Kind::eMember || root->kind == Expression::Kind::eIndex)
        root = root->operands[0];
    return *root;
}

} // namespace EffectCompiler
