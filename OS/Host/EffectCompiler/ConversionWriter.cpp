// The part of FunctionWriter that makes values of one type of values of another.
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

constexpr std::size_t kMostText = 4u << 20;

std::string repeated(const std::string& text, std::size_t count)
{
    std::string result;
    for (std::size_t i = 0; i < count && result.size() < kMostText; ++i)
        result += (i > 0 ? ", " : "") + text;
    return result;
}

std::size_t lengthOf(const Type& type)
{
    std::size_t length = 1;
    for (const int dim : type.dims)
        length *= static_cast<std::size_t>(dim);
    return length;
}

} // namespace

GlslValue FunctionWriter::convert(GlslValue value, const Type& from, const Type& to,
                                  SourcePlace place)
{
    if (!isNumeric(from) || !isNumeric(to))
        return value;
    const int count = componentsOf(to);
    const std::string name = stage_.typeName(to, place);
    const auto call = [&](const std::string& arguments) {
        return GlslValue{name + "(" + arguments + ")", Binding::ePrimary, false};
    };
    if (isGlslMatrix(from) || isGlslMatrix(to)) {
        if (isGlslMatrix(from) && isGlslMatrix(to)) {
            const bool isSame = from.rows == to.rows && from.columns == to.columns;
            return isSame ? value : call(alone(value));
        }
        if (isGlslScalar(from)) { // GLSL would only fill the diagonal
            const GlslValue number = stable(convert(value, from, scalarType(to.scalar), place),
                                            scalarType(to.scalar), place);
            return call(repeated(number.text, static_cast<std::size_t>(count)));
        }
        if (isGlslMatrix(to))
            return call(alone(value));
        const GlslValue kept = stable(value, from, place);
        std::string text;
        for (int i = 0; i < count; ++i)
            text += (i > 0 ? ", " : "") +
                    elementText(kept.text, from, i / from.columns, i % from.columns);
        return isGlslScalar(to) && from.scalar == to.scalar
                   ? GlslValue{text, Binding::ePrimary, false}
                   : call(text);
    }
    const bool isShorter = !isGlslScalar(from) && count < componentsOf(from);
    if (isShorter && from.scalar == to.scalar)
        return {bound(value, Binding::ePrimary) + "." +
                    std::string("xyzw").substr(0, static_cast<std::size_t>(count)),
                Binding::ePrimary, value.isStable};
    if (from.scalar == to.scalar && count == componentsOf(from))
        return value;
    return call(alone(value));
}

GlslValue FunctionWriter::filled(const Type& type, const GlslValue& number, const Type& numberType,
                                 SourcePlace place)
{
    if (isArray(type)) {
        Type element = type;
        element.dims.clear();
        const GlslValue one = filled(element, number, numberType, place);
        return {stage_.arrayTypeName(type, place) + "(" + repeated(one.text, lengthOf(type)) + ")",
                Binding::ePrimary, false};
    }
    if (type.scalar != Scalar::eRecord)
        return convert(number, numberType, type, place);
    std::string text;
    for (const Field& field : type.record->fields) {
        text += (text.empty() ? "" : ", ") + alone(filled(field.type, number, numberType, place));
        if (text.size() > kMostText) {
            refuse(place, "the program becomes too long");
            break;
        }
    }
    return {stage_.typeName(type, place) + "(" + (text.empty() ? "0.0" : text) + ")",
            Binding::ePrimary, false};
}

GlslValue FunctionWriter::zero(const Type& type, SourcePlace place)
{
    if (isNumeric(type))
        return convert(numberValue(0.0, isGlslMatrix(type) ? Scalar::eFloat : type.scalar),
                       scalarType(type.scalar), type, place);
    // Of a literal, each field's own kind of number.
    if (isArray(type) || type.scalar == Scalar::eRecord) {
        if (isArray(type)) {
            Type element = type;
            element.dims.clear();
            return {stage_.arrayTypeName(type, place) + "(" +
                        repeated(zero(element, place).text, lengthOf(type)) + ")",
                    Binding::ePrimary, false};
        }
        std::string text;
        for (const Field& field : type.record->fields)
            text += (text.empty() ? "" : ", ") + zero(field.type, place).text;
        return {stage_.typeName(type, place) + "(" + (text.empty() ? "0.0" : text) + ")",
                Binding::ePrimary, false};
    }
    refuse(place, "GLSL has no value of '" + nameOf(type) + "'");
    return {"0", Binding::ePrimary, true};
}

const Record* FunctionWriter::recordOf(const Expression& expression) const
{
    if (!isRecord(expression.type))
        return nullptr;
    const auto found = concrete_.find(expression.variable);
    if (expression.variable && found != concrete_.end() && found->second)
        return found->second;
    return expression.type.record;
}

} // namespace EffectCompiler
