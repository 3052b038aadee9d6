#include "OS/Host/EffectCompiler/ConstantEvaluator.h"

#include "OS/Host/EffectCompiler/ConstantArithmetic.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace EffectCompiler {

using namespace ConstantArithmetic;

namespace {

constexpr std::size_t kTooMany = std::numeric_limits<std::uint32_t>::max();

/// Without overflow: what is too large is kTooMany.
std::size_t multiplied(std::size_t a, std::size_t b)
{
    return b != 0 && a > kTooMany / b ? kTooMany : std::min(a * b, kTooMany);
}

std::size_t lengthOf(const Type& type)
{
    std::size_t length = 1;
    for (const int dim : type.dims)
        length = multiplied(length, static_cast<std::size_t>(std::max(dim, 1)));
    return length;
}

constexpr int kDeepest = 2 * Limits::kOperators;

} // namespace

std::size_t elementsOf(const Type& type)
{
    return multiplied(lengthOf(type),
                      type.record ? std::max<std::size_t>(type.record->elements, 1) : 1);
}

std::size_t numbersOf(const Type& type)
{
    std::size_t numbers = static_cast<std::size_t>(type.rows) * type.columns;
    if (type.scalar == Type::Scalar::eRecord && type.record) {
        numbers = 0;
        for (const Field& field : type.record->fields) {
            const std::size_t inner = numbersOf(field.type);
            if (inner == 0)
                return 0;
            numbers = std::min(numbers + inner, kTooMany);
        }
    } else if (!isNumeric(type)) {
        return 0;
    }
    return multiplied(numbers, lengthOf(type));
}

ConstantEvaluator::ConstantEvaluator(std::function<const Variable*(std::string_view)> find)
    : find_(std::move(find))
{
}

std::optional<Constant> ConstantEvaluator::evaluate(const Expression& expression)
{
    // Names lead to other expressions: their depths add up.
    if (depth_ >= kDeepest)
        return {};
    ++depth_;
    auto result = compute(expression);
    --depth_;
    if (result && !spend(result->numbers.size()))
        return {};
    return result;
}

bool ConstantEvaluator::spend(std::size_t numbers)
{
    made_ = std::min(made_ + numbers, kMostNumbers + 1);
    return made_ <= kMostNumbers;
}

std::optional<Constant> ConstantEvaluator::evaluateAs(const Expression& expression,
                                                      const Type& type)
{
    auto value = evaluate(expression);
    if (!value || !spend(numbersOf(type)))
        return {};
    return converted(std::move(*value), type, false);
}

std::optional<int> ConstantEvaluator::evaluateInt(const Expression& expression)
{
    const auto value = evaluate(expression);
    if (!value || value->numbers.size() != 1 || !isNumeric(value->type) ||
        value->type.scalar == Type::Scalar::eBool)
        return {};
    const double number = value->numbers[0];
    if (!(std::abs(number) <= std::numeric_limits<int>::max()) || std::trunc(number) != number)
        return {};
    return static_cast<int>(number);
}

std::shared_ptr<const Constant> ConstantEvaluator::valueOf(const Variable& variable)
{
    if (!variable.isConst || !variable.initialiser)
        return nullptr;
    const auto [known, isNew] = known_.try_emplace(&variable);
    if (!isNew) // also while it is computed: what refers to itself is not constant
        return known->second;
    auto value = evaluateAs(*variable.initialiser, variable.type);
    if (!value)
        return nullptr;
    auto constant = std::make_shared<const Constant>(std::move(*value));
    known_[&variable] = constant;
    return constant;
}

std::optional<Constant> ConstantEvaluator::converted(Constant value, const Type& type,
                                                     bool isExplicit) const
{
    const std::size_t wanted = numbersOf(type);
    if (wanted == 0 || wanted > kMostNumbers || value.numbers.empty())
        return {};
    const bool isList = value.type.scalar == Type::Scalar::eVoid;
    const bool isPlain = type.dims.empty() && type.scalar != Type::Scalar::eRecord;
    std::vector<double> numbers(wanted);
    if (value.numbers.size() == 1 && !isList && (isPlain || isExplicit)) {
        std::fill(numbers.begin(), numbers.end(), value.numbers[0]);
    } else if (value.numbers.size() == wanted) {
        numbers = std::move(value.numbers);
    } else if (isPlain && !isList && value.type.dims.empty() && value.type.rows >= type.rows &&
               value.type.columns >= type.columns) {
        for (std::size_t i = 0; i < wanted; ++i)
            numbers[i] = value.numbers[i / type.columns * value.type.columns + i % type.columns];
    } else {
        return {};
    }
    if (type.scalar != Type::Scalar::eRecord) {
        for (double& number : numbers)
            number = fitted(number, type.scalar);
    }
    return Constant{type, std::move(numbers)};
}

std::optional<Constant> ConstantEvaluator::compute(const Expression& expression)
{
    switch (expression.kind) {
    case Expression::Kind::eNumber:
    case Expression::Kind::eBool:
        return Constant{expression.kind == Expression::Kind::eBool ? scalarType(Type::Scalar::eBool)
                                                                   : expression.type,
                        {expression.value}};
    case Expression::Kind::eName: {
        const Variable* variable = find_(expression.text);
        const auto value = variable ? valueOf(*variable) : nullptr;
        if (!value || !spend(value->numbers.size()))
            return {};
        return *value;
    }
    case Expression::Kind::eUnary:
        return computeUnary(expression);
    case Expression::Kind::eBinary:
        return computeBinary(expression);
    case Expression::Kind::eConditional: {
        const auto condition = evaluate(*expression.operands[0]);
        if (!condition || condition->numbers.size() != 1)
            return {};
        return evaluate(*expression.operands[condition->numbers[0] != 0.0 ? 1 : 2]);
    }
    case Expression::Kind::eConstructor:
        return computeConstructor(expression);
    case Expression::Kind::eCast: {
        auto value = evaluate(*expression.operands[0]);
        if (!value || !spend(numbersOf(expression.castType)))
            return {};
        return converted(std::move(*value), expression.castType, true);
    }
    case Expression::Kind::eIndex:
        return computeIndex(expression);
    case Expression::Kind::eMember:
        return computeMember(expression);
    case Expression::Kind::eList:
        return computeList(expression);
    case Expression::Kind::eString:
    case Expression::Kind::ePostfix:
    case Expression::Kind::eAssign:
    case Expression::Kind::eCall:
    case Expression::Kind::eMethodCall:
        break;
    }
    return {};
}

std::optional<Constant> ConstantEvaluator::computeUnary(const Expression& expression)
{
    auto value = evaluate(*expression.operands[0]);
    if (!value || !isNumeric(value->type) || !value->type.dims.empty())
        return {};
    const std::string& symbol = expression.text;
    if (symbol == "++" || symbol == "--" || (symbol == "~" && !isWhole(value->type)))
        return {};
    if (symbol == "!")
        value->type.scalar = Type::Scalar::eBool;
    else if (value->type.scalar == Type::Scalar::eBool)
        value->type.scalar = Type::Scalar::eInt;
    for (double& number : value->numbers) {
        if (symbol == "-")
            number = -number;
        else if (symbol == "!")
            number = number == 0.0;
        else if (symbol == "~")
            number = -number - 1.0;
    }
    return value;
}

std::optional<Constant> ConstantEvaluator::computeBinary(const Expression& expression)
{
    const auto left = evaluate(*expression.operands[0]);
    const auto right = left ? evaluate(*expression.operands[1]) : std::nullopt;
    if (!right)
        return {};
    if (expression.text == ",")
        return right;
    auto type = commonType(left->type, right->type);
    if (!type)
        return {};
    if (type->scalar == Type::Scalar::eBool && !isLogical(expression.text))
        type->scalar = Type::Scalar::eInt;
    const auto a = converted(*left, *type, false);
    const auto b = converted(*right, *type, false);
    if (!a || !b)
        return {};
    Constant result{*type, std::vector<double>(a->numbers.size())};
    if (isComparison(expression.text) || isLogical(expression.text))
        result.type.scalar = Type::Scalar::eBool;
    for (std::size_t i = 0; i < a->numbers.size(); ++i) {
        const auto number = applied(expression.text, a->numbers[i], b->numbers[i], isWhole(*type));
        if (!number)
            return {};
        result.numbers[i] = fitted(*number, result.type.scalar);
    }
    return result;
}

std::optional<Constant> ConstantEvaluator::computeConstructor(const Expression& expression)
{
    Constant joined;
    for (const Expression* operand : expression.operands) {
        const auto value = evaluate(*operand);
        if (!value)
            return {};
        joined.numbers.insert(joined.numbers.end(), value->numbers.begin(), value->numbers.end());
        joined.type = value->type;
    }
    if (expression.operands.size() != 1)
        joined.type = {}; // as a list
    return converted(std::move(joined), expression.castType, true);
}

std::optional<Constant> ConstantEvaluator::computeList(const Expression& expression)
{
    Constant list;
    for (const Expression* operand : expression.operands) {
        const auto value = evaluate(*operand);
        if (!value)
            return {};
        list.numbers.insert(list.numbers.end(), value->numbers.begin(), value->numbers.end());
    }
    return list;
}

std::optional<Constant> ConstantEvaluator::computeIndex(const Expression& expression)
{
    const auto whole = evaluate(*expression.operands[0]);
    const auto index = whole ? evaluateInt(*expression.operands[1]) : std::nullopt;
    if (!index || *index < 0)
        return {};
    Type type = whole->type;
    int length = 0;
    if (!type.dims.empty()) {
        length = type.dims.front();
        type.dims.erase(type.dims.begin());
    } else if (type.isMatrix) {
        length = type.rows;
        type.isMatrix = false;
        type.isVector = true;
        type.rows = 1;
    } else if (type.isVector) {
        length = type.columns;
        type = scalarType(type.scalar);
    }
    const std::size_t size = numbersOf(type);
    const std::size_t start = static_cast<std::size_t>(*index) * size;
    if (*index >= length || size == 0 || start + size > whole->numbers.size())
        return {};
    const auto first = whole->numbers.begin() + static_cast<std::ptrdiff_t>(start);
    return Constant{type, std::vector<double>(first, first + static_cast<std::ptrdiff_t>(size))};
}

std::optional<Constant> ConstantEvaluator::computeMember(const Expression& expression)
{
    const auto whole = evaluate(*expression.operands[0]);
    if (!whole)
        return {};
    if (!whole->type.dims.empty()) {
        if (expression.text != "length")
            return {};
        return Constant{scalarType(Type::Scalar::eInt),
                        {static_cast<double>(whole->type.dims.front())}};
    }
    if (whole->type.record) {
        std::size_t start = 0;
        for (const Field& field : whole->type.record->fields) {
            const std::size_t size = numbersOf(field.type);
            if (field.name == expression.text && start + size <= whole->numbers.size()) {
                const auto first = whole->numbers.begin() + static_cast<std::ptrdiff_t>(start);
                return Constant{field.type, {first, first + static_cast<std::ptrdiff_t>(size)}};
            }
            start += size;
        }
        return {};
    }
    const auto places = swizzled(expression.text, whole->type);
    if (places.empty() || places.size() > 4)
        return {};
    Constant result{scalarType(whole->type.scalar), {}};
    result.type.isVector = places.size() > 1;
    result.type.columns = static_cast<std::uint8_t>(places.size());
    for (const std::size_t place : places)
        result.numbers.push_back(whole->numbers[place]);
    return result;
}

} // namespace EffectCompiler
