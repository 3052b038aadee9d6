#include "OS/Host/EffectCompiler/ConstantArithmetic.h"

#include "OS/Host/EffectCompiler/Operators.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace EffectCompiler::ConstantArithmetic {
namespace {

std::optional<double> shiftedOrMasked(std::string_view symbol, double a, double b)
{
    const auto left = static_cast<std::int64_t>(fitted(a, Type::Scalar::eInt));
    const auto right = static_cast<std::int64_t>(fitted(b, Type::Scalar::eInt));
    const int places = static_cast<int>(std::clamp<std::int64_t>(right, 0, 31));
    std::int64_t result = 0;
    if (symbol == "&")
        result = left & right;
    else if (symbol == "|")
        result = left | right;
    else if (symbol == "^")
        result = left ^ right;
    else if (symbol == "<<")
        result = left * (std::int64_t{1} << places);
    else if (symbol == ">>")
        result = left >> places;
    else
        return {};
    return static_cast<double>(static_cast<std::int32_t>(static_cast<std::uint32_t>(result)));
}

} // namespace

bool isNumeric(const Type& type)
{
    return type.scalar == Type::Scalar::eBool || type.scalar == Type::Scalar::eInt ||
           type.scalar == Type::Scalar::eUint || type.scalar == Type::Scalar::eFloat;
}

bool isWhole(const Type& type)
{
    return type.scalar == Type::Scalar::eInt || type.scalar == Type::Scalar::eUint;
}

double fitted(double value, Type::Scalar scalar)
{
    if (scalar == Type::Scalar::eFloat)
        return value;
    if (scalar == Type::Scalar::eBool)
        return value != 0.0;
    if (std::isnan(value))
        return 0.0;
    if (scalar == Type::Scalar::eUint)
        return std::trunc(std::clamp(value, 0.0, 4294967295.0));
    return std::trunc(std::clamp(value, -2147483648.0, 4294967295.0));
}

Type scalarType(Type::Scalar scalar)
{
    Type type;
    type.scalar = scalar;
    return type;
}

std::optional<double> applied(std::string_view symbol, double a, double b, bool isInt)
{
    if (symbol == "+")
        return a + b;
    if (symbol == "-")
        return a - b;
    if (symbol == "*")
        return a * b;
    if (symbol == "/" || symbol == "%") {
        if (isInt && b == 0.0)
            return {};
        if (symbol == "%")
            return std::fmod(a, b);
        return isInt ? std::trunc(a / b) : a / b;
    }
    if (const std::optional<bool> holds = compared(symbol, a, b))
        return *holds;
    if (symbol == "&&")
        return a != 0.0 && b != 0.0;
    if (symbol == "||")
        return a != 0.0 || b != 0.0;
    return isInt ? shiftedOrMasked(symbol, a, b) : std::nullopt;
}

bool isComparison(std::string_view symbol)
{
    return symbol.find_first_of("<>=!") != std::string_view::npos && symbol != "<<" &&
           symbol != ">>";
}

bool isLogical(std::string_view symbol)
{
    return symbol == "&&" || symbol == "||";
}

std::optional<Type> commonType(const Type& a, const Type& b)
{
    if (!isNumeric(a) || !isNumeric(b) || !a.dims.empty() || !b.dims.empty())
        return {};
    const bool isScalarA = !a.isVector && !a.isMatrix;
    const bool isScalarB = !b.isVector && !b.isMatrix;
    Type type = isScalarA ? b : a;
    if (!isScalarA && !isScalarB) {
        if (a.isMatrix != b.isMatrix || (a.isMatrix && a.columns != b.columns))
            return {};
        type.columns = std::min(a.columns, b.columns);
        type.rows = std::min(a.rows, b.rows);
    }
    type.scalar = std::max(a.scalar, b.scalar); // bool, int, uint, float
    return type;
}

std::vector<std::size_t> swizzled(std::string_view text, const Type& type)
{
    std::vector<std::size_t> places;
    if (!type.isMatrix) {
        for (const char letter : text) {
            const std::size_t place = std::min(std::string_view("xyzw").find(letter),
                                               std::string_view("rgba").find(letter));
            if (place >= type.columns)
                return {};
            places.push_back(place);
        }
        return places;
    }
    while (!text.empty()) {
        const bool isFromZero = text.starts_with("_m");
        const std::size_t length = isFromZero ? 4 : 3;
        if (text.size() < length || text[0] != '_')
            return {};
        const int first = isFromZero ? '0' : '1';
        const int row = text[length - 2] - first;
        const int column = text[length - 1] - first;
        if (row < 0 || row >= type.rows || column < 0 || column >= type.columns)
            return {};
        places.push_back(static_cast<std::size_t>(row * type.columns + column));
        text.remove_prefix(length);
    }
    return places;
}

} // namespace EffectCompiler::ConstantArithmetic
