#include "OS/Host/EffectCompiler/ExpressionChecker.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;

bool isAggregate(const Type& type)
{
    return isArray(type) || isRecord(type);
}

std::size_t memberCount(const Type& type)
{
    return isArray(type) ? static_cast<std::size_t>(type.dims[0]) : type.record->fields.size();
}

Type memberType(const Type& type, std::size_t index)
{
    return isArray(type) ? elementOf(type) : type.record->fields[index].type;
}

} // namespace

void ExpressionChecker::checkInitialiser(Expression*& expression, const Type& type)
{
    if (expression->kind == Kind::eList)
        return fillFromList(expression, type);
    check(*expression);
    convert(expression, type, "in initialization");
}

/// Checks the values in all braces, which may nest in any way, and lines them up.
void ExpressionChecker::flatten(Expression& list, std::vector<Expression*>& leaves)
{
    for (Expression* operand : list.operands) {
        if (operand->kind == Kind::eList) {
            flatten(*operand, leaves);
            continue;
        }
        check(*operand);
        leaves.push_back(operand);
    }
}

void ExpressionChecker::fillFromList(Expression*& expression, const Type& type)
{
    Expression& list = *expression;
    if (isError(type))
        return fail(list, {});
    if (isAggregate(type) && list.operands.size() == memberCount(type)) {
        fillMembers(list, type);
        return;
    }
    std::vector<Expression*> leaves;
    flatten(list, leaves);
    if (std::any_of(leaves.begin(), leaves.end(),
                    [](const Expression* e) { return isError(e->type); }))
        return fail(list, {});
    std::size_t next = 0;
    Expression* filled = takeLeaves(type, leaves, next, list.place);
    if (!filled)
        return fail(list, {});
    if (next < leaves.size())
        return fail(list, "too many values for '" + nameOf(type) + "'");
    expression = filled;
}

void ExpressionChecker::fillMembers(Expression& list, const Type& type)
{
    list.type = type;
    for (std::size_t i = 0; i < list.operands.size(); ++i) {
        const Type member = memberType(type, i);
        checkInitialiser(list.operands[i], member);
    }
}

/// Makes a value of a type from the next leaves. @return null after saying what is wrong
Expression* ExpressionChecker::takeLeaves(const Type& type, std::vector<Expression*>& leaves,
                                          std::size_t& next, SourcePlace place)
{
    if (next == leaves.size()) {
        messages_.error(place, "too few values for '" + nameOf(type) + "'");
        return nullptr;
    }
    if (!isNumeric(type)) {
        Expression* first = leaves[next];
        if (!isAggregate(type) || (first->type == type)) {
            ++next;
            convert(leaves[next - 1], type, "in initialization");
            return leaves[next - 1];
        }
        Expression* list = make(Kind::eList, place);
        list->type = type;
        for (std::size_t i = 0; i < memberCount(type); ++i) {
            Expression* member = takeLeaves(memberType(type, i), leaves, next, place);
            if (!member)
                return nullptr;
            list->operands.push_back(member);
        }
        return list;
    }
    Expression* made = make(Kind::eConstructor, place);
    made->castType = made->type = type;
    for (int missing = componentsOf(type); missing > 0;) {
        if (next == leaves.size()) {
            messages_.error(place, "too few values for '" + nameOf(type) + "'");
            return nullptr;
        }
        Expression* leaf = leaves[next];
        if (!isNumeric(leaf->type)) {
            messages_.error(leaf->place, "cannot convert from '" + nameOf(leaf->type) + "' to '" +
                                             nameOf(type) + "' in initialization");
            return nullptr;
        }
        if (componentsOf(leaf->type) > missing) {
            messages_.error(leaf->place, "too many values for '" + nameOf(type) + "'");
            return nullptr;
        }
        missing -= componentsOf(leaf->type);
        ++next;
        convert(leaf, withScalar(leaf->type, type.scalar), "in initialization");
        made->operands.push_back(leaf);
    }
    if (made->operands.size() > 1)
        return made;
    convert(made->operands[0], type, "in initialization");
    if (made->operands[0]->type == type)
        return made->operands[0];
    made->kind = Kind::eCast;
    return made;
}

} // namespace EffectCompiler
