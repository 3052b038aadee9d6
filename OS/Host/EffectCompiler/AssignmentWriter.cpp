// The part of FunctionWriter that writes what assigns.
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Types.h"

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;

} // namespace

/// "++" and "--", before and after.
GlslValue FunctionWriter::stepValue(const Expression& expression)
{
    const bool isPostfix = expression.kind == Kind::ePostfix;
    const Expression& operand = *expression.operands[0];
    const Target stepped = target(operand, Use::eOnce);
    if (stepped.parts.empty() && isPostfix)
        return {stepped.text + expression.text, Binding::ePrimary, false};
    if (stepped.parts.empty())
        return {expression.text + stepped.text, Binding::eUnary, false};
    const GlslValue old = keep(read(stepped, expression.place), operand.type, expression.place);
    const std::string one = operand.type.scalar == Scalar::eFloat ? "1.0" : "1";
    const GlslValue changed =
        keep({old.text + " " + expression.text[0] + " " + one, Binding::eSum, false}, operand.type,
             expression.place);
    assign(stepped, changed.text, expression.place);
    return isPostfix ? old : changed;
}

GlslValue FunctionWriter::assignValue(const Expression& expression)
{
    if (expression.text != "=")
        return compoundValue(expression);
    const Expression& right = *expression.operands[1];
    const bool hasEffects = right.hasEffects || expression.operands[0]->hasEffects;
    const Target left =
        target(*expression.operands[0], hasEffects ? Use::eBeforeEffects : Use::eOnce);
    const GlslValue assigned = value(right);
    if (left.parts.empty())
        return {left.text + " = " + alone(assigned), Binding::eAssign, false};
    const GlslValue kept = stable(assigned, right.type, right.place);
    assign(left, kept.text, expression.place);
    return kept;
}

/// "a += b". Where the types differ, a is converted to what both have in common, and back.
GlslValue FunctionWriter::compoundValue(const Expression& expression)
{
    const std::string sign = expression.text.substr(0, expression.text.size() - 1);
    const Expression& right = *expression.operands[1];
    const bool hasEffects = right.hasEffects || expression.operands[0]->hasEffects;
    const Type& common = right.type;
    const bool mayBeScalar = sign == "+" || sign == "-" || sign == "*" || sign == "/";
    const Expression* scalar = mayBeScalar ? scalarOf(right) : nullptr;
    const bool isProductOfMatrices = sign == "*" && isGlslMatrix(common) && !scalar;
    const bool isNative = !right.hasEffects && common == expression.operands[0]->type &&
                          sign != "%" && !isProductOfMatrices;
    const Target left = target(*expression.operands[0], hasEffects ? Use::eBeforeEffects
                                                        : isNative ? Use::eOnce
                                                                   : Use::eRepeated);
    GlslValue old = read(left, expression.place);
    if (right.hasEffects)
        old = keep(old, left.type, expression.place);
    GlslValue other = value(scalar ? *scalar : right);
    if (scalar)
        other = convert(other, scalar->type, scalarType(common.scalar), right.place);
    if (isBitOperator(sign) && stage_.version() < 130)
        refuse(expression.place, "GLSL 1.20 has no operator '" + expression.text + "'");
    if (isNative && left.parts.empty())
        return {left.text + " " + expression.text + " " + alone(other), Binding::eAssign, false};
    old = convert(old, left.type, common, expression.place);
    GlslValue result = arithmetic(sign, common, old, other, !scalar, expression.place);
    result = convert(result, common, left.type, expression.place);
    if (left.parts.empty())
        return {left.text + " = " + alone(result), Binding::eAssign, false};
    const GlslValue kept = keep(result, left.type, expression.place);
    assign(left, kept.text, expression.place);
    return kept;
}

} // namespace EffectCompiler
