#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <utility>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Scalar = Type::Scalar;

bool isComparison(const std::string& sign)
{
    return sign == "==" || sign == "!=" ||
           ((sign[0] == '<' || sign[0] == '>') && !isBitOperator(sign));
}

const char* comparisonName(const std::string& sign)
{
    if (sign == "==")
        return "equal";
    if (sign == "!=")
        return "notEqual";
    if (sign == "<")
        return "lessThan";
    if (sign == "<=")
        return "lessThanEqual";
    return sign == ">" ? "greaterThan" : "greaterThanEqual";
}

/// Of two literals.
double bitsOf(const std::string& sign, double left, double right)
{
    const auto a = static_cast<std::uint32_t>(static_cast<long long>(left));
    const auto b = static_cast<std::uint32_t>(static_cast<long long>(right));
    const std::uint32_t distance = b % 32;
    const std::uint32_t bits = sign == "&"    ? a & b
                               : sign == "|"  ? a | b
                               : sign == "^"  ? a ^ b
                               : sign == "<<" ? a << distance
                                              : a >> distance;
    return static_cast<double>(static_cast<std::int32_t>(bits));
}

bool isSimpleName(const std::string& text)
{
    return std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
               c == '_' || c == '.';
    });
}

GlslValue joined(const GlslValue& left, const std::string& sign, const GlslValue& right)
{
    const Binding binding = bindingOf(sign);
    const auto above = static_cast<Binding>(static_cast<int>(binding) + 1);
    return {bound(left, binding) + " " + sign + " " + bound(right, above), binding, false};
}

} // namespace

GlslValue FunctionWriter::value(const Expression& expression)
{
    switch (expression.kind) {
    case Kind::eNumber:
    case Kind::eBool:
        return numberValue(expression.value, expression.type.scalar);
    case Kind::eString:
        refuse(expression.place, "GLSL has no strings");
        return {"0", Binding::ePrimary, true};
    case Kind::eName:
        return nameValue(expression);
    case Kind::eUnary:
        return unaryValue(expression);
    case Kind::ePostfix:
        return stepValue(expression);
    case Kind::eBinary:
        return binaryValue(expression);
    case Kind::eAssign:
        return assignValue(expression);
    case Kind::eConditional:
        return conditionalValue(expression);
    case Kind::eCall:
    case Kind::eMethodCall:
        return callValue(expression);
    case Kind::eConstructor:
        return constructorValue(expression);
    case Kind::eCast:
        return castValue(expression);
    case Kind::eIndex:
    case Kind::eMember:
        return objectValue(expression);
    case Kind::eList:
        return listValue(expression);
    }
    return {};
}

std::string FunctionWriter::temporary(const Type& type, SourcePlace place, const std::string& value)
{
    const std::string name = stage_.names().local("tmp");
    pre(stage_.declaration(type, name, place) + (value.empty() ? "" : " = " + value) + ";");
    return name;
}

GlslValue FunctionWriter::keep(const GlslValue& value, const Type& type, SourcePlace place)
{
    if (!mayHaveStatements_)
        return {bound(value, Binding::ePrimary), Binding::ePrimary, true};
    return {temporary(type, place, alone(value)), Binding::ePrimary, true};
}

GlslValue FunctionWriter::stable(const GlslValue& value, const Type& type, SourcePlace place)
{
    if (value.isStable || (value.binding == Binding::ePrimary && isSimpleName(value.text)))
        return value;
    return keep(value, type, place);
}

bool FunctionWriter::isUnchanging(const Expression& expression) const
{
    const Variable* variable = expression.variable;
    if (expression.kind == Kind::eName)
        return !variable || !variable->isWritten;
    if (expression.kind == Kind::eCall || expression.kind == Kind::eMethodCall ||
        expression.hasEffects)
        return false;
    return std::all_of(expression.operands.begin(), expression.operands.end(),
                       [this](const Expression* operand) { return isUnchanging(*operand); });
}

/// The operands from left to right: what a later one may change is kept in a temporary.
std::vector<GlslValue> FunctionWriter::operandValues(const std::vector<const Expression*>& operands)
{
    std::vector<GlslValue> values;
    for (std::size_t i = 0; i < operands.size(); ++i) {
        std::size_t mark = pre_.size();
        GlslValue each = value(*operands[i]);
        for (std::size_t earlier = 0; earlier < i; ++earlier)
            keepBefore(mark, values[earlier], *operands[earlier]);
        const bool mayChange =
            std::any_of(operands.begin() + static_cast<std::ptrdiff_t>(i) + 1, operands.end(),
                        [](const Expression* later) { return later->hasEffects; });
        if (mayChange && !each.isStable && !isUnchanging(*operands[i]) &&
            !isSampler(operands[i]->type))
            each = keep(each, operands[i]->type, operands[i]->place);
        values.push_back(std::move(each));
    }
    return values;
}

/// Where statements came in for a later operand, an earlier one with effects must run before them.
/// @param mark where they begin
void FunctionWriter::keepBefore(std::size_t& mark, GlslValue& value, const Expression& operand)
{
    if (pre_.size() == mark || value.isStable || !operand.hasEffects || !mayHaveStatements_)
        return;
    const std::string name = stage_.names().local("tmp");
    const std::string text =
        stage_.declaration(operand.type, name, operand.place) + " = " + alone(value) + ";";
    pre_.insert(pre_.begin() + static_cast<std::ptrdiff_t>(mark++), {0, text});
    value = {name, Binding::ePrimary, true};
}

GlslValue FunctionWriter::nameValue(const Expression& expression)
{
    if (!expression.variable)
        return {expression.text, Binding::ePrimary, true};
    const Variable& variable = *expression.variable;
    const auto local = locals_.find(&variable);
    if (local != locals_.end())
        return {local->second, Binding::ePrimary, false};
    if (variable.isGlobal)
        return stage_.global(variable, expression.place);
    refuse(expression.place, "'" + variable.name + "' cannot be used here");
    return {"0", Binding::ePrimary, true};
}

GlslValue FunctionWriter::unaryValue(const Expression& expression)
{
    const std::string& sign = expression.text;
    if (sign == "++" || sign == "--")
        return stepValue(expression);
    const GlslValue operand = value(*expression.operands[0]);
    if (sign == "+")
        return operand;
    if (sign == "!" && !isGlslScalar(expression.type))
        return {"not(" + alone(operand) + ")", Binding::ePrimary, false};
    if (sign == "~" && stage_.version() < 130)
        refuse(expression.place, "GLSL 1.20 has no operator '~'");
    std::string text = bound(operand, Binding::eUnary);
    if (text[0] == sign[0])
        text = "(" + text + ")"; // "--" would be another operator
    return {sign + text, Binding::eUnary, operand.isStable};
}

const Expression* FunctionWriter::scalarOf(const Expression& expression) const
{
    if (expression.kind != Kind::eCast || isGlslScalar(expression.type))
        return nullptr;
    const Expression& inner = *expression.operands[0];
    return isNumeric(inner.type) && isGlslScalar(inner.type) ? &inner : nullptr;
}

GlslValue FunctionWriter::binaryValue(const Expression& expression)
{
    const std::string& sign = expression.text;
    if (sign == ",")
        return commaValue(expression);
    if (sign == "&&" || sign == "||")
        return logicValue(expression);
    const Expression& left = *expression.operands[0];
    const Expression& right = *expression.operands[1];
    const Type& type = left.type;
    // GLSL too takes a scalar for all components, where it calculates.
    const bool mayBeScalar = sign == "+" || sign == "-" || sign == "*" || sign == "/";
    const Expression* scalarLeft = mayBeScalar ? scalarOf(left) : nullptr;
    const Expression* scalarRight = mayBeScalar && !scalarLeft ? scalarOf(right) : nullptr;
    auto values =
        operandValues({scalarLeft ? scalarLeft : &left, scalarRight ? scalarRight : &right});
    const Type scalar = scalarType(type.scalar);
    if (scalarLeft)
        values[0] = convert(values[0], scalarLeft->type, scalar, left.place);
    if (scalarRight)
        values[1] = convert(values[1], scalarRight->type, scalar, right.place);
    if (isComparison(sign))
        return comparison(sign, type, values[0], values[1]);
    if (isBitOperator(sign) && left.kind == Kind::eNumber && right.kind == Kind::eNumber)
        return numberValue(bitsOf(sign, left.value, right.value), type.scalar);
    return arithmetic(sign, type, std::move(values[0]), std::move(values[1]),
                      !scalarLeft && !scalarRight, expression.place);
}

/// @param areMatrices whether both sides are of the type, where it is a matrix
GlslValue FunctionWriter::arithmetic(const std::string& sign, const Type& type, GlslValue left,
                                     GlslValue right, bool areMatrices, SourcePlace place)
{
    (void)stage_.typeName(type, place); // refuses what GLSL does not have
    if (isBitOperator(sign) && stage_.version() < 130)
        refuse(place, "GLSL 1.20 has no operator '" + sign + "'");
    if (sign == "%") {
        const std::string name =
            stage_.helper(type.scalar == Scalar::eFloat ? "fmod" : "remainder", glslTypeName(type));
        return {name + "(" + alone(left) + ", " + alone(right) + ")", Binding::ePrimary, false};
    }
    if (sign == "*" && areMatrices && isGlslMatrix(type))
        return {"matrixCompMult(" + alone(left) + ", " + alone(right) + ")", Binding::ePrimary,
                false};
    return joined(left, sign, right);
}

GlslValue FunctionWriter::comparison(const std::string& sign, const Type& type,
                                     const GlslValue& left, const GlslValue& right)
{
    if (isGlslScalar(type))
        return joined(left, sign, right);
    return {std::string(comparisonName(sign)) + "(" + alone(left) + ", " + alone(right) + ")",
            Binding::ePrimary, false};
}

GlslValue FunctionWriter::commaValue(const Expression& expression)
{
    const Expression& left = *expression.operands[0];
    const Expression& right = *expression.operands[1];
    const GlslValue first = value(left);
    const std::size_t mark = pre_.size();
    const GlslValue second = value(right);
    if (!left.hasEffects || first.text.empty() || first.isStable)
        return second;
    const bool isPlain = pre_.size() == mark && !isVoid(left.type) && !isVoid(right.type);
    if (isPlain)
        return {alone(first) + ", " + alone(second), Binding::eComma, false};
    pre_.insert(pre_.begin() + static_cast<std::ptrdiff_t>(mark), {0, first.text + ";"});
    return second;
}

/// "&&" and "||". Of scalars, the right side is evaluated only where the left leaves it open.
GlslValue FunctionWriter::logicValue(const Expression& expression)
{
    const bool isAnd = expression.text == "&&";
    if (!isGlslScalar(expression.type)) {
        const auto values = operandValues({expression.operands[0], expression.operands[1]});
        const std::string name =
            stage_.helper(isAnd ? "and" : "or", stage_.typeName(expression.type, expression.place));
        return {name + "(" + alone(values[0]) + ", " + alone(values[1]) + ")", Binding::ePrimary,
                false};
    }
    const GlslValue left = value(*expression.operands[0]);
    const Lines before = std::exchange(pre_, {});
    const GlslValue right = value(*expression.operands[1]);
    const Lines within = std::exchange(pre_, before);
    if (within.empty())
        return joined(left, expression.text, right);
    const std::string result = temporary(expression.type, expression.place, alone(left));
    pre("if (" + std::string(isAnd ? "" : "!") + result + ") {");
    for (const Line& each : within)
        pre_.push_back({each.depth + 1, each.text});
    pre_.push_back({1, result + " = " + alone(right) + ";"});
    pre("}");
    return {result, Binding::ePrimary, true};
}

GlslValue FunctionWriter::conditionalValue(const Expression& expression)
{
    const auto& operands = expression.operands;
    const Type& type = expression.type;
    if (!isGlslScalar(operands[0]->type)) {
        const auto values = operandValues({operands[0], operands[1], operands[2]});
        const std::string name = stage_.helper("select", stage_.typeName(type, expression.place));
        return {name + "(" + alone(values[0]) + ", " + alone(values[1]) + ", " + alone(values[2]) +
                    ")",
                Binding::ePrimary, false};
    }
    const GlslValue condition = value(*operands[0]);
    const Lines before = std::exchange(pre_, {});
    const GlslValue first = value(*operands[1]);
    const Lines inFirst = std::exchange(pre_, {});
    const GlslValue second = value(*operands[2]);
    const Lines inSecond = std::exchange(pre_, before);
    if (inFirst.empty() && inSecond.empty())
        return {bound(condition, Binding::eOr) + " ? " + bound(first, Binding::eConditional) +
                    " : " + bound(second, Binding::eConditional),
                Binding::eConditional, false};
    const std::string result = temporary(type, expression.place, {});
    const auto add = [&](const Lines& lines, const GlslValue& chosen) {
        for (const Line& each : lines)
            pre_.push_back({each.depth + 1, each.text});
        pre_.push_back({1, result + " = " + alone(chosen) + ";"});
    };
    pre("if (" + condition.text + ") {");
    add(inFirst, first);
    pre("} else {");
    add(inSecond, second);
    pre("}");
    return {result, Binding::ePrimary, true};
}

GlslValue FunctionWriter::constructorValue(const Expression& expression)
{
    std::vector<const Expression*> operands(expression.operands.begin(), expression.operands.end());
    auto values = operandValues(operands);
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Type& type = operands[i]->type;
        if (isGlslMatrix(type)) { // GLSL makes matrices of vectors only
            const GlslValue kept = stable(values[i], type, expression.place);
            for (int row = 0; row < type.rows; ++row)
                text += (text.empty() ? "" : ", ") + kept.text + "[" + std::to_string(row) + "]";
            continue;
        }
        text += (text.empty() ? "" : ", ") + alone(values[i]);
    }
    return {stage_.typeName(expression.type, expression.place) + "(" + text + ")",
            Binding::ePrimary, false};
}

GlslValue FunctionWriter::castValue(const Expression& expression)
{
    const Expression& operand = *expression.operands[0];
    if (!isNumeric(expression.type) && isNumeric(operand.type)) {
        const GlslValue number = stable(value(operand), operand.type, expression.place);
        return filled(expression.type, number, operand.type, expression.place);
    }
    return convert(value(operand), operand.type, expression.type, expression.place);
}

GlslValue FunctionWriter::listValue(const Expression& expression)
{
    std::vector<const Expression*> operands(expression.operands.begin(), expression.operands.end());
    const auto values = operandValues(operands);
    std::string text;
    for (std::size_t i = 0; i < values.size(); ++i) {
        // An array of arrays is one array of all elements.
        const std::string part = isArray(operands[i]->type) && isArray(expression.type)
                                     ? elementTexts(values[i], *operands[i])
                                     : alone(values[i]);
        text += (text.empty() ? "" : ", ") + part;
    }
    const bool isEmpty = text.empty();
    return {stage_.arrayTypeName(expression.type, expression.place) + "(" +
                (isEmpty ? "0.0" : text) + ")",
            Binding::ePrimary, false};
}

/// The elements of an array, separated by commas.
std::string FunctionWriter::elementTexts(const GlslValue& array, const Expression& expression)
{
    if (expression.kind == Kind::eList) { // "float[2](a, b)"
        const std::size_t open = array.text.find('(');
        return array.text.substr(open + 1, array.text.size() - open - 2);
    }
    const GlslValue kept = stable(array, expression.type, expression.place);
    std::size_t count = 1;
    for (const int dim : expression.type.dims)
        count *= static_cast<std::size_t>(dim);
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += (i > 0 ? ", " : "") + kept.text + "[" + std::to_string(i) + "]";
    return text;
}

} // namespace EffectCompiler
