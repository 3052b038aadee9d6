#pragma once

#include <optional>
#include <string_view>

/// What the operators of effects and of the preprocessor's conditions have in common.
namespace EffectCompiler {

struct BinaryOperator
{
    std::string_view symbol;
    int precedence; ///< higher binds closer
};

inline constexpr BinaryOperator kBinaryOperators[] = {
    {"||", 1}, {"&&", 2}, {"|", 3}, {"^", 4},  {"&", 5},  {"==", 6},
    {"!=", 6}, {"<", 7},  {">", 7}, {"<=", 7}, {">=", 7}, {"<<", 8},
    {">>", 8}, {"+", 9},  {"-", 9}, {"*", 10}, {"/", 10}, {"%", 10}};

/// @return nothing where the symbol does not compare
template <class T>
std::optional<bool> compared(std::string_view symbol, T a, T b)
{
    if (symbol == "==")
        return a == b;
    if (symbol == "!=")
        return a != b;
    if (symbol == "<")
        return a < b;
    if (symbol == ">")
        return a > b;
    if (symbol == "<=")
        return a <= b;
    if (symbol == ">=")
        return a >= b;
    return {};
}

} // namespace EffectCompiler
