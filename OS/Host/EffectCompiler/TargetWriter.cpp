// The part of FunctionWriter that writes what is indexed, selected from and assigned to.
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Swizzle.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;

std::string component(int index)
{
    return std::string(".") + "xyzw"[index];
}

} // namespace

std::string FunctionWriter::elementText(const std::string& object, const Type& type, int row,
                                        int column)
{
    if (isGlslMatrix(type))
        return object + "[" + std::to_string(row) + "]" + component(column);
    if (isGlslScalar(type))
        return object;
    return object + component(type.rows > 1 ? row : column);
}

/// A value that is selected from another: where the other is no lvalue, the same way.
GlslValue FunctionWriter::objectValue(const Expression& expression)
{
    return read(target(expression, Use::eOnce), expression.place);
}

GlslValue FunctionWriter::read(const Target& target, SourcePlace place)
{
    if (target.parts.empty())
        return {target.text, Binding::ePrimary, false};
    std::string text;
    for (const std::string& part : target.parts)
        text += (text.empty() ? "" : ", ") + part;
    return {stage_.arrayTypeName(target.type, place) + "(" + text + ")", Binding::ePrimary, false};
}

void FunctionWriter::assign(const Target& target, const std::string& value, SourcePlace)
{
    if (target.parts.empty())
        return pre(target.text + " = " + value + ";");
    for (std::size_t i = 0; i < target.parts.size(); ++i) {
        const std::string part =
            isArray(target.type) ? "[" + std::to_string(i) + "]" : component(static_cast<int>(i));
        pre(target.parts[i] + " = " + value + part + ";");
    }
}

FunctionWriter::Target FunctionWriter::target(const Expression& expression, Use use)
{
    if (expression.kind == Kind::eIndex)
        return indexTarget(expression, use);
    if (expression.kind == Kind::eMember)
        return memberTarget(expression, use);
    GlslValue plain = value(expression);
    if (use != Use::eOnce && !expression.isLvalue)
        plain = stable(plain, expression.type, expression.place);
    return {bound(plain, Binding::ePrimary), {}, expression.type};
}

/// @param isAlone whether it is the only index
GlslValue FunctionWriter::indexValue(const Expression& index, Use use, bool isAlone)
{
    const GlslValue plain = value(index);
    const bool mayChange = use == Use::eBeforeEffects && !isUnchanging(index);
    if (mayChange || (index.hasEffects && (use != Use::eOnce || !isAlone)))
        return plain.isStable ? plain : keep(plain, index.type, index.place);
    return use == Use::eOnce ? plain : stable(plain, index.type, index.place);
}

FunctionWriter::Target FunctionWriter::indexTarget(const Expression& expression, Use use)
{
    // All indices of an array of arrays together select from one array.
    std::vector<const Expression*> indices = {expression.operands[1]};
    const Expression* object = expression.operands[0];
    while (isArray(object->type) && object->kind == Kind::eIndex) {
        indices.push_back(object->operands[1]);
        object = object->operands[0];
    }
    std::reverse(indices.begin(), indices.end());
    const bool isPartial = isArray(expression.type);
    const bool hasEffects = std::any_of(indices.begin(), indices.end(),
                                        [](const Expression* index) { return index->hasEffects; });
    const Use inner = hasEffects && use == Use::eOnce  ? Use::eBeforeEffects
                      : isPartial && use == Use::eOnce ? Use::eRepeated
                                                       : use;
    Target base = target(*object, inner);
    std::vector<GlslValue> values;
    values.reserve(indices.size());
    for (const Expression* index : indices)
        values.push_back(indexValue(*index, use, indices.size() == 1));
    if (!base.parts.empty())
        base = {
            keep(read(base, expression.place), base.type, expression.place).text, {}, base.type};
    return isArray(object->type) ? flatTarget(expression, base, indices, values)
                                 : elementTarget(expression, std::move(base), values[0]);
}

/// A row of a matrix, or a component of a vector.
FunctionWriter::Target FunctionWriter::elementTarget(const Expression& expression, Target base,
                                                     const GlslValue& index)
{
    const Type& type = expression.operands[0]->type;
    const Expression& number = *expression.operands[1];
    if (isGlslScalar(type) || (isMatrix(type) && type.rows == 1))
        return {base.text, {}, expression.type};
    if (number.kind == Kind::eNumber && !isGlslMatrix(type))
        return {base.text + component(static_cast<int>(number.value)), {}, expression.type};
    return {base.text + "[" + index.text + "]", {}, expression.type};
}

/// An element of the one array that stands for an array of arrays, or an inner array: its elements.
FunctionWriter::Target FunctionWriter::flatTarget(const Expression& expression, const Target& base,
                                                  const std::vector<const Expression*>& indices,
                                                  const std::vector<GlslValue>& values)
{
    const std::vector<int>& dims = base.type.dims;
    long long known = 0; // the sum of what is literal: "i * 3 + 2"
    GlslValue sum;
    for (std::size_t i = 0; i < dims.size(); ++i) {
        known *= dims[i];
        if (!sum.text.empty() && dims[i] != 1)
            sum = {bound(sum, Binding::eProduct) + " * " + std::to_string(dims[i]),
                   Binding::eProduct, false};
        if (i < indices.size() && indices[i]->kind == Kind::eNumber)
            known += static_cast<long long>(indices[i]->value);
        else if (i < indices.size())
            sum = sum.text.empty() ? values[i]
                                   : GlslValue{bound(sum, Binding::eSum) + " + " +
                                                   bound(values[i], Binding::eProduct),
                                               Binding::eSum, false};
    }
    long long count = 1;
    for (std::size_t i = indices.size(); i < dims.size(); ++i)
        count *= dims[i];
    const bool isPartial = isArray(expression.type);
    if (isPartial && !sum.text.empty())
        sum = stable(sum, scalarType(Scalar::eInt), expression.place);
    const auto element = [&](long long offset) {
        const long long number = known + offset;
        std::string index = sum.text.empty() ? std::to_string(number) : sum.text;
        if (!sum.text.empty() && number != 0)
            index = bound(sum, Binding::eSum) + " + " + std::to_string(number);
        return base.text + "[" + index + "]";
    };
    if (!isPartial)
        return {element(0), {}, expression.type};
    Target selected = {{}, {}, expression.type};
    for (long long i = 0; i < count; ++i)
        selected.parts.push_back(element(i));
    return selected;
}

FunctionWriter::Target FunctionWriter::memberTarget(const Expression& expression, Use use)
{
    const Expression& object = *expression.operands[0];
    if (isRecord(object.type)) {
        const Target base = target(object, use);
        return {base.text + "." + stage_.fieldName(*object.type.record, expression.text),
                {},
                expression.type};
    }
    if (!isMatrix(object.type))
        return swizzled(expression, target(object, use));
    const bool isSeveral = !isScalar(expression.type);
    return matrixElements(expression,
                          target(object, isSeveral && use == Use::eOnce ? Use::eRepeated : use));
}

FunctionWriter::Target FunctionWriter::swizzled(const Expression& expression, Target object)
{
    const Type& type = expression.operands[0]->type;
    const auto components = *swizzleOf(expression.text, type.columns);
    if (!object.parts.empty()) {
        Target picked = {{}, {}, expression.type};
        for (const int each : components)
            picked.parts.push_back(object.parts[static_cast<std::size_t>(each)]);
        if (picked.parts.size() == 1)
            picked = {picked.parts[0], {}, expression.type};
        return picked;
    }
    if (!isGlslScalar(type))
        return {object.text + "." + expression.text, {}, expression.type};
    if (isGlslScalar(expression.type)) // GLSL's scalars have no components
        return {object.text, {}, expression.type};
    return {stage_.typeName(expression.type, expression.place) + "(" + object.text + ")",
            {},
            expression.type};
}

FunctionWriter::Target FunctionWriter::matrixElements(const Expression& expression,
                                                      const Target& object)
{
    const Type& type = expression.operands[0]->type;
    std::string base = object.text;
    if (!object.parts.empty())
        base = keep(read(object, expression.place), type, expression.place).text;
    const auto elements = *matrixElementsOf(expression.text, type.rows, type.columns);
    Target selected = {{}, {}, expression.type};
    for (const MatrixElement& element : elements)
        selected.parts.push_back(elementText(base, type, element.row, element.column));
    if (selected.parts.size() == 1)
        return {selected.parts[0], {}, expression.type};
    return selected;
}

} // namespace EffectCompiler
