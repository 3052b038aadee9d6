#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace EffectCompiler {

/// The numbers of a constant: row by row, field by field, element by element.
struct Constant
{
    Type type;
    std::vector<double> numbers;
};

/// Computes what expressions are worth that need no program to run: literals, lists, constructors,
/// casts, operators, swizzles, elements, and names of constants. Works on trees that the checker
/// has not seen.
///
/// All it makes together is bounded: beyond kMostNumbers nothing is constant.
class ConstantEvaluator
{
public:
    static constexpr std::size_t kMostNumbers = 4u << 20;

    /// @param find the variable that a name means, or null
    explicit ConstantEvaluator(std::function<const Variable*(std::string_view)> find);

    /// @return nothing for what is not constant, or is no number
    std::optional<Constant> evaluate(const Expression& expression);
    /// Converted as an assignment does: one number fills everything, and lists of as many numbers
    /// as the type holds fit.
    std::optional<Constant> evaluateAs(const Expression& expression, const Type& type);
    /// @return nothing for what is no whole number
    std::optional<int> evaluateInt(const Expression& expression);
    /// The value of a constant: computed once, best where it is declared.
    std::shared_ptr<const Constant> valueOf(const Variable& variable);

private:
    std::optional<Constant> compute(const Expression& expression);
    std::optional<Constant> computeUnary(const Expression& expression);
    std::optional<Constant> computeBinary(const Expression& expression);
    std::optional<Constant> computeConstructor(const Expression& expression);
    std::optional<Constant> computeMember(const Expression& expression);
    std::optional<Constant> computeIndex(const Expression& expression);
    std::optional<Constant> computeList(const Expression& expression);
    std::optional<Constant> converted(Constant value, const Type& type, bool isExplicit) const;
    bool spend(std::size_t numbers);

    std::function<const Variable*(std::string_view)> find_;
    std::unordered_map<const Variable*, std::shared_ptr<const Constant>> known_;
    std::size_t made_ = 0;
    int depth_ = 0;
};

/// How many scalars, vectors, matrices and objects a type holds; arrays without a size count as 1.
std::size_t elementsOf(const Type& type);
/// How many numbers a type holds; 0 for what holds anything else.
std::size_t numbersOf(const Type& type);

} // namespace EffectCompiler
