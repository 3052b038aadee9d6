#include "OS/Host/EffectCompiler/GlslValue.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

std::string floatText(double number)
{
    auto value = static_cast<float>(
        std::fmin(std::fmax(number, static_cast<double>(std::numeric_limits<float>::lowest())),
                  static_cast<double>(std::numeric_limits<float>::max())));
    if (std::isnan(number))
        value = 0.0F;
    std::array<char, 32> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value).ptr;
    std::string text(buffer.data(), end);
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

/// Wraps around as 32 bits do.
std::string intText(double number)
{
    const double limited = std::fmin(std::fmax(std::trunc(number), -9e15), 9e15);
    const auto bits = static_cast<std::uint32_t>(static_cast<long long>(limited));
    const auto value = static_cast<std::int32_t>(bits);
    if (value == std::numeric_limits<std::int32_t>::min())
        return "(-2147483647 - 1)";
    return std::to_string(value);
}

std::string vectorName(Scalar scalar)
{
    switch (scalar) {
    case Scalar::eBool:
        return "bvec";
    case Scalar::eInt:
        return "ivec";
    case Scalar::eUint:
        return "uvec";
    default:
        return "vec";
    }
}

std::string scalarName(Scalar scalar)
{
    switch (scalar) {
    case Scalar::eBool:
        return "bool";
    case Scalar::eInt:
        return "int";
    case Scalar::eUint:
        return "uint";
    case Scalar::eVoid:
        return "void";
    default:
        return "float";
    }
}

std::string samplerName(TextureKind kind)
{
    switch (kind) {
    case TextureKind::e1D:
        return "sampler1D";
    case TextureKind::e3D:
        return "sampler3D";
    case TextureKind::eCube:
        return "samplerCube";
    case TextureKind::eRect:
        return "sampler2DRect";
    default:
        return "sampler2D";
    }
}

} // namespace

std::string bound(const GlslValue& value, Binding binding)
{
    return value.binding < binding ? "(" + value.text + ")" : value.text;
}

GlslValue numberValue(double number, Scalar scalar)
{
    GlslValue value;
    value.isStable = true;
    if (scalar == Scalar::eBool)
        value.text = number != 0.0 ? "true" : "false";
    else if (scalar == Scalar::eFloat)
        value.text = floatText(number);
    else
        value.text = intText(number);
    if (scalar == Scalar::eUint)
        value.text = std::to_string(static_cast<std::uint32_t>(
                         static_cast<long long>(std::fmin(std::fmax(number, -9e15), 9e15)))) +
                     "u";
    if (value.text[0] == '-')
        value.binding = Binding::eUnary;
    return value;
}

bool isGlslMatrix(const Type& type)
{
    return type.isMatrix && type.rows > 1 && type.columns > 1;
}

std::string glslTypeName(const Type& type)
{
    if (type.scalar == Scalar::eSampler)
        return samplerName(type.texture);
    if (isGlslMatrix(type)) {
        const std::string rows = std::to_string(type.rows);
        return type.rows == type.columns ? "mat" + rows
                                         : "mat" + rows + "x" + std::to_string(type.columns);
    }
    if (isGlslScalar(type))
        return scalarName(type.scalar);
    return vectorName(type.scalar) + std::to_string(type.rows * type.columns);
}

Binding bindingOf(const std::string& sign)
{
    if (sign == ",")
        return Binding::eComma;
    if (sign == "||")
        return Binding::eOr;
    if (sign == "&&")
        return Binding::eAnd;
    if (sign == "|")
        return Binding::eBitOr;
    if (sign == "^")
        return Binding::eBitXor;
    if (sign == "&")
        return Binding::eBitAnd;
    if (sign == "==" || sign == "!=")
        return Binding::eEqual;
    if (sign == "<<" || sign == ">>")
        return Binding::eShift;
    if (sign[0] == '<' || sign[0] == '>')
        return Binding::eRelation;
    if (sign == "+" || sign == "-")
        return Binding::eSum;
    return Binding::eProduct;
}

bool isBitOperator(const std::string& sign)
{
    return sign == "&" || sign == "|" || sign == "^" || sign == "<<" || sign == ">>" || sign == "~";
}

} // namespace EffectCompiler
