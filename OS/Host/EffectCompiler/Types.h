#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>

/// What types the language has, and which becomes which.
namespace EffectCompiler {

Type scalarType(Type::Scalar scalar);
Type vectorType(Type::Scalar scalar, int columns);
Type matrixType(Type::Scalar scalar, int rows, int columns);
Type recordType(const Record* record);
Type errorType();

inline bool isArray(const Type& type)
{
    return !type.dims.empty();
}
inline bool isError(const Type& type)
{
    return type.scalar == Type::Scalar::eError;
}
inline bool isVoid(const Type& type)
{
    return type.scalar == Type::Scalar::eVoid;
}
/// bool, int, uint or float: a scalar, a vector or a matrix of it.
bool isNumeric(const Type& type);
/// A numeric type that is neither vector nor matrix nor array.
bool isScalar(const Type& type);
inline bool isVector(const Type& type)
{
    return type.isVector && !isArray(type);
}
inline bool isMatrix(const Type& type)
{
    return type.isMatrix && !isArray(type);
}
inline bool isSampler(const Type& type)
{
    return type.scalar == Type::Scalar::eSampler && !isArray(type);
}
/// A struct, not an array of them.
inline bool isRecord(const Type& type)
{
    return type.scalar == Type::Scalar::eRecord && !isArray(type);
}

/// Of a numeric type: how many scalars it has.
inline int componentsOf(const Type& type)
{
    return type.rows * type.columns;
}
/// What one index selects: an element of an array, a row of a matrix, a component of a vector.
/// eError for what has none.
Type elementOf(const Type& type);
/// The same shape of another scalar.
Type withScalar(Type type, Type::Scalar scalar);

/// How well an argument fits a parameter: 0 for the same type, more for worse; nothing where there
/// is no implicit conversion. Scalars of all kinds become each other; a scalar becomes all
/// components of a vector or matrix; vectors and matrices lose what is too much.
std::optional<int> conversionCost(const Type& from, const Type& to);
inline bool converts(const Type& from, const Type& to)
{
    return conversionCost(from, to).has_value();
}
/// Whether "(to)from" is allowed: all that converts, vectors and matrices of equally many
/// components, and a scalar to all of a struct or an array.
bool casts(const Type& from, const Type& to);

/// What both operands of arithmetic become: the wider scalar, at least int, and of vectors the
/// shorter. Nothing where they do not go together.
std::optional<Type> commonType(const Type& left, const Type& right);

} // namespace EffectCompiler
