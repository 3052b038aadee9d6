#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <string>
#include <vector>

namespace EffectCompiler {

/// How tightly the operators of GLSL bind.
enum class Binding
{
    eComma,
    eAssign,
    eConditional,
    eOr,
    eAnd,
    eBitOr,
    eBitXor,
    eBitAnd,
    eEqual,
    eRelation,
    eShift,
    eSum,
    eProduct,
    eUnary,
    ePrimary
};

/// An expression in GLSL.
struct GlslValue
{
    std::string text;
    Binding binding = Binding::ePrimary;
    bool isStable = false; ///< the same wherever it is written: a literal, a constant, a temporary
};

/// The text, in parentheses where it would fall apart beside an operator that binds so.
std::string bound(const GlslValue& value, Binding binding);
/// As an argument, or behind "=": in parentheses where it has a comma of its own.
inline std::string alone(const GlslValue& value)
{
    return bound(value, Binding::eAssign);
}

/// A GLSL literal.
GlslValue numberValue(double number, Type::Scalar scalar);

/// How GLSL holds a numeric type: the type's rows and columns where both are more than one, else a
/// vector of components, or a scalar.
bool isGlslMatrix(const Type& type);
inline bool isGlslScalar(const Type& type)
{
    return type.rows * type.columns == 1;
}
/// "vec3", "mat3x4" (of four rows of three GLSL's mat3x4 has three columns of four: rows of the
/// effect are columns of GLSL), "sampler2D"; not of structs, and of arrays the element's.
std::string glslTypeName(const Type& type);

/// The operator's binding, of "+" and its like.
Binding bindingOf(const std::string& sign);
/// "&", "<<", "~" and their like, which came with GLSL 1.30.
bool isBitOperator(const std::string& sign);

} // namespace EffectCompiler
