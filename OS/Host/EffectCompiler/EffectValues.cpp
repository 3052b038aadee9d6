#include "OS/Host/EffectCompiler/EffectValues.h"

namespace EffectCompiler {
namespace {

BaseType baseOf(Type::Scalar scalar)
{
    switch (scalar) {
    case Type::Scalar::eBool:
        return BaseType::eBool;
    case Type::Scalar::eInt:
    case Type::Scalar::eUint:
        return BaseType::eInt;
    case Type::Scalar::eFloat:
        return BaseType::eFloat;
    case Type::Scalar::eString:
        return BaseType::eString;
    case Type::Scalar::eTexture:
        return BaseType::eTexture;
    case Type::Scalar::eSampler:
        return BaseType::eSampler;
    case Type::Scalar::eRecord:
        return BaseType::eStruct;
    case Type::Scalar::eVoid:
    case Type::Scalar::eError:
        break;
    }
    return BaseType::eVoid;
}

/// A string, or several in a list: an array of strings is its first.
const Expression* firstOf(const Expression& expression)
{
    const Expression* first = &expression;
    while (first->kind == Expression::Kind::eList && !first->operands.empty())
        first = first->operands[0];
    return first;
}

} // namespace

ValueType valueTypeOf(const Type& type)
{
    ValueType result;
    result.base = baseOf(type.scalar);
    result.texture = type.texture;
    result.rows = type.rows;
    result.columns = type.columns;
    result.arraySizes = type.dims;
    Type element = type;
    element.dims.clear();
    result.name = nameOf(element);
    return result;
}

std::optional<Value> valueOf(const Expression& expression, const Type& type,
                             ConstantEvaluator& evaluator)
{
    Value value;
    value.type = valueTypeOf(type);
    if (numbersOf(type) == 0) {
        const Expression* first = firstOf(expression);
        if (first->kind != Expression::Kind::eString && first->kind != Expression::Kind::eName)
            return {};
        value.text = first->text;
        return value;
    }
    auto constant = evaluator.evaluateAs(expression, type);
    if (!constant)
        return {};
    value.numbers = std::move(constant->numbers);
    return value;
}

} // namespace EffectCompiler
