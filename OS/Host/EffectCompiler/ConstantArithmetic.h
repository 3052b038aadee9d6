#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>
#include <string_view>
#include <vector>

/// What operators do to numbers, number by number, and to the shapes of types.
namespace EffectCompiler::ConstantArithmetic {

/// bool, int, uint or float, of any shape.
bool isNumeric(const Type& type);
bool isWhole(const Type& type);
Type scalarType(Type::Scalar scalar);

/// As a program would hold it: whole numbers have 32 bits.
double fitted(double value, Type::Scalar scalar);

/// @param isInt whether both are whole
/// @return nothing for what has no value, such as a whole number divided by 0
std::optional<double> applied(std::string_view symbol, double a, double b, bool isInt);
bool isComparison(std::string_view symbol);
bool isLogical(std::string_view symbol);

/// The shape of what two operands make: scalars take the other's, vectors the shorter.
/// @return nothing for what does not fit together
std::optional<Type> commonType(const Type& a, const Type& b);

/// The places in a vector that "xyz" or "rgb" name, or in a matrix "_m00_m11" or "_11_22".
/// @return empty for what names none
std::vector<std::size_t> swizzled(std::string_view text, const Type& type);

} // namespace EffectCompiler::ConstantArithmetic
