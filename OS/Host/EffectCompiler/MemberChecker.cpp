#include "OS/Host/EffectCompiler/ExpressionChecker.h"
#include "OS/Host/EffectCompiler/StateMatrices.h"
#include "OS/Host/EffectCompiler/Swizzle.h"
#include "OS/Host/EffectCompiler/Types.h"

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;

/// "glstate.matrix.mvp" of the members that say so; empty when the chain begins with something
/// else than a name.
std::string pathOf(const Expression& expression)
{
    if (expression.kind == Kind::eName)
        return expression.text;
    if (expression.kind == Kind::eMember) {
        const std::string path = pathOf(*expression.operands[0]);
        return path.empty() ? path : path + "." + expression.text;
    }
    if (expression.kind == Kind::eIndex && expression.operands[1]->kind == Kind::eNumber) {
        const std::string path = pathOf(*expression.operands[0]);
        const auto index = static_cast<long long>(expression.operands[1]->value);
        return path.empty() ? path : path + "[" + std::to_string(index) + "]";
    }
    return {};
}

const Expression& rootOf(const Expression& expression)
{
    const Expression* root = &expression;
    while (root->kind == Kind::eMember || root->kind == Kind::eIndex)
        root = root->operands[0];
    return *root;
}

} // namespace

/// "glstate.matrix.mvp" and its like, unless the effect has a variable of that name.
bool ExpressionChecker::checkState(Expression& expression)
{
    const Expression& root = rootOf(expression);
    if (root.kind != Kind::eName || (root.text != "glstate" && root.text != "state"))
        return false;
    if (scopes_.find(root.text) || declarations_.global(root.text))
        return false;
    const std::string builtIn = stateMatrix(pathOf(expression));
    if (builtIn.empty())
        return false;
    expression.kind = Kind::eName;
    expression.text = builtIn;
    expression.variable = nullptr;
    expression.operands.clear();
    expression.type = matrixType(Scalar::eFloat, 4, 4);
    return true;
}

void ExpressionChecker::checkMember(Expression& expression)
{
    if (checkState(expression))
        return;
    Expression& object = *expression.operands[0];
    check(object);
    if (isError(object.type))
        return fail(expression, {});
    if (isArray(object.type) && expression.text == "length") {
        expression.kind = Kind::eNumber;
        expression.value = object.type.dims[0];
        expression.type = scalarType(Scalar::eInt);
        return;
    }
    if (isRecord(object.type)) {
        const Field* field = Declarations::field(*object.type.record, expression.text);
        if (!field)
            return fail(expression,
                        "'" + nameOf(object.type) + "' has no field '" + expression.text + "'");
        expression.type = field->type;
        expression.isLvalue = object.isLvalue;
        return;
    }
    if (isMatrix(object.type))
        return checkMatrixElements(expression);
    checkSwizzle(expression);
}

void ExpressionChecker::checkSwizzle(Expression& expression)
{
    const Expression& object = *expression.operands[0];
    const auto components =
        isNumeric(object.type) ? swizzleOf(expression.text, object.type.columns) : std::nullopt;
    if (!components)
        return fail(expression,
                    "'" + nameOf(object.type) + "' has no member '" + expression.text + "'");
    const int count = static_cast<int>(components->size());
    expression.type =
        count == 1 ? scalarType(object.type.scalar) : vectorType(object.type.scalar, count);
    expression.isLvalue = object.isLvalue && !repeats(*components);
}

void ExpressionChecker::checkMatrixElements(Expression& expression)
{
    const Expression& object = *expression.operands[0];
    const auto elements = matrixElementsOf(expression.text, object.type.rows, object.type.columns);
    if (!elements)
        return fail(expression,
                    "'" + nameOf(object.type) + "' has no member '" + expression.text + "'");
    const int count = static_cast<int>(elements->size());
    expression.type =
        count == 1 ? scalarType(object.type.scalar) : vectorType(object.type.scalar, count);
    expression.isLvalue = object.isLvalue && !repeats(*elements);
}

} // namespace EffectCompiler
