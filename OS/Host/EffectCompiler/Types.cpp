#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

bool isNumericScalar(Scalar scalar)
{
    return scalar == Scalar::eBool || scalar == Scalar::eInt || scalar == Scalar::eUint ||
           scalar == Scalar::eFloat;
}

/// float1 and float, float1x3, float3x1 and float3: the same components in the same order.
bool isSameRow(const Type& a, const Type& b)
{
    const bool isRowA = a.rows == 1 || a.columns == 1;
    const bool isRowB = b.rows == 1 || b.columns == 1;
    return isRowA && isRowB && componentsOf(a) == componentsOf(b) && a.isMatrix != b.isMatrix;
}

std::optional<int> shapeCost(const Type& from, const Type& to)
{
    constexpr int kSplat = 10;
    constexpr int kTruncation = 20;
    if (from.rows == to.rows && from.columns == to.columns && from.isMatrix == to.isMatrix)
        return from.isVector == to.isVector ? 0 : 1;
    if (isSameRow(from, to))
        return 1;
    if (componentsOf(from) == 1 && !from.isMatrix)
        return kSplat;
    if (from.isMatrix != to.isMatrix)
        return {};
    if (from.rows < to.rows || from.columns < to.columns)
        return {};
    return kTruncation + componentsOf(from) - componentsOf(to);
}

int scalarCost(Scalar from, Scalar to)
{
    constexpr int kPromotion = 2;
    constexpr int kNarrowing = 4;
    if (from == to)
        return 0;
    return from < to ? kPromotion : kNarrowing;
}

bool convertsTexture(const Type& from, const Type& to)
{
    return from.texture == to.texture || from.texture == TextureKind::eAny ||
           to.texture == TextureKind::eAny;
}

std::optional<int> recordCost(const Record* from, const Record* to)
{
    if (from == to)
        return 0;
    if (from && to && from->implements == to)
        return 1;
    return {};
}

} // namespace

Type scalarType(Scalar scalar)
{
    Type type;
    type.scalar = scalar;
    return type;
}

Type vectorType(Scalar scalar, int columns)
{
    Type type = scalarType(scalar);
    type.isVector = true;
    type.columns = static_cast<std::uint8_t>(columns);
    return type;
}

Type matrixType(Scalar scalar, int rows, int columns)
{
    Type type = scalarType(scalar);
    type.isMatrix = true;
    type.rows = static_cast<std::uint8_t>(rows);
    type.columns = static_cast<std::uint8_t>(columns);
    return type;
}

Type recordType(const Record* record)
{
    Type type = scalarType(Scalar::eRecord);
    type.record = record;
    return type;
}

Type errorType()
{
    return scalarType(Scalar::eError);
}

bool isNumeric(const Type& type)
{
    return isNumericScalar(type.scalar) && !isArray(type);
}

bool isScalar(const Type& type)
{
    return isNumeric(type) && !type.isVector && !type.isMatrix;
}

Type elementOf(const Type& type)
{
    Type element = type;
    if (isArray(type)) {
        element.dims.erase(element.dims.begin());
        return element;
    }
    if (!isNumeric(type) || isScalar(type))
        return errorType();
    if (isVector(type))
        return scalarType(type.scalar);
    return vectorType(type.scalar, type.columns);
}

Type withScalar(Type type, Scalar scalar)
{
    type.scalar = scalar;
    return type;
}

std::optional<int> conversionCost(const Type& from, const Type& to)
{
    if (isError(from) || isError(to) || from == to)
        return 0;
    if (from.dims != to.dims)
        return {};
    if (isArray(from)) { // of the same size: the elements are the same but for their spelling
        const bool isSame = from.scalar == to.scalar && from.record == to.record &&
                            from.rows == to.rows && from.columns == to.columns;
        return isSame && convertsTexture(from, to) ? std::optional<int>(1) : std::nullopt;
    }
    if (from.scalar == Scalar::eRecord && to.scalar == Scalar::eRecord)
        return recordCost(from.record, to.record);
    if (from.scalar == to.scalar &&
        (from.scalar == Scalar::eSampler || from.scalar == Scalar::eTexture))
        return convertsTexture(from, to) ? std::optional<int>(1) : std::nullopt;
    if (!isNumeric(from) || !isNumeric(to))
        return {};
    const auto shape = shapeCost(from, to);
    if (!shape)
        return {};
    return *shape + scalarCost(from.scalar, to.scalar);
}

bool casts(const Type& from, const Type& to)
{
    if (converts(from, to))
        return true;
    if (isNumeric(from) && isNumeric(to))
        return componentsOf(from) == componentsOf(to);
    if (!isScalar(from))
        return false;
    if (isNumericScalar(to.scalar))
        return true; // of an array
    if (to.scalar != Scalar::eRecord || !to.record || to.record->isInterface)
        return false;
    return std::all_of(to.record->fields.begin(), to.record->fields.end(),
                       [&](const Field& field) { return casts(from, field.type); });
}

std::optional<Type> commonType(const Type& left, const Type& right)
{
    if (isError(left) || isError(right))
        return errorType();
    if (!isNumeric(left) || !isNumeric(right))
        return {};
    const Scalar scalar = std::max({left.scalar, right.scalar, Scalar::eInt});
    if (isScalar(left))
        return withScalar(right, scalar);
    if (isScalar(right))
        return withScalar(left, scalar);
    if (left.isMatrix != right.isMatrix) {
        if (isSameRow(left, right))
            return withScalar(left.isMatrix ? right : left, scalar);
        if (componentsOf(left) == 1)
            return withScalar(right, scalar);
        if (componentsOf(right) == 1)
            return withScalar(left, scalar);
        return {};
    }
    Type common = withScalar(left, scalar);
    common.rows = std::min(left.rows, right.rows);
    common.columns = std::min(left.columns, right.columns);
    return common;
}

} // namespace EffectCompiler
