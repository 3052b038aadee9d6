// The part of FunctionWriter that writes calls.
#include "OS/Host/EffectCompiler/CallGraph.h"
#include "OS/Host/EffectCompiler/Declarations.h"
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Intrinsics.h"
#include "OS/Host/EffectCompiler/Types.h"
#include "OS/Host/EffectCompiler/Walk.h"

#include <algorithm>
#include <utility>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;
using Direction = Variable::Direction;

/// Whether it is one component that is not known while compiling: drivers take "v[i]" for an out
/// argument, but not all of them rightly.
bool isDynamicComponent(const Expression& expression)
{
    return expression.kind == Kind::eIndex && !isArray(expression.operands[0]->type) &&
           expression.operands[1]->kind != Kind::eNumber;
}

/// "@name(" and "$1" of a table's row.
std::string filledIn(std::string_view form, const std::vector<GlslValue>& arguments)
{
    std::string text;
    for (std::size_t i = 0; i < form.size(); ++i) {
        if (form[i] == '$')
            text += arguments[static_cast<std::size_t>(form[++i] - '1')].text;
        else
            text += form[i];
    }
    return text;
}

/// Whether one of them, from the first on, has effects.
bool haveEffects(const std::vector<Expression*>& operands, std::size_t first)
{
    return std::any_of(operands.begin() + static_cast<std::ptrdiff_t>(first), operands.end(),
                       [](const Expression* operand) { return operand->hasEffects; });
}

} // namespace

GlslValue FunctionWriter::callValue(const Expression& expression)
{
    // What a call around this one gives out waits until that one has been made.
    Lines outer = std::exchange(post_, {});
    GlslValue result = callOf(expression);
    post_ = std::move(outer);
    return result;
}

GlslValue FunctionWriter::callOf(const Expression& expression)
{
    if (expression.function) {
        StageWriter::Instance& called = calledInstance(expression);
        if (instance_)
            instance_->callees.push_back(&called);
        const Function& function = *called.function;
        const bool isMethod = expression.kind == Kind::eMethodCall;
        const auto& operands = expression.operands;
        std::string text;
        if (isMethod)
            text = selfArgument(*operands[0], function.self->isWritten,
                                haveEffects(operands, 0) ? Use::eBeforeEffects : Use::eOnce);
        std::vector<Passed> parameters;
        for (const Variable* parameter : function.parameters)
            parameters.push_back({parameter->type, parameter->direction});
        for (const GlslValue& each : arguments(operands, isMethod ? 1 : 0, parameters))
            text += (text.empty() ? "" : ", ") + each.text;
        return completeCall(expression, called.name + "(" + text + ")");
    }
    if (expression.text == "mul" && !expression.intrinsic)
        return mulValue(expression);
    if (expression.text == "transpose" && !expression.intrinsic)
        return transposeValue(expression);
    return intrinsicValue(expression);
}

/// A call, and after it what it gives out.
GlslValue FunctionWriter::completeCall(const Expression& expression, const std::string& text)
{
    if (post_.empty())
        return {text, Binding::ePrimary, false};
    const Lines after = std::exchange(post_, {});
    GlslValue result = {"", Binding::ePrimary, true};
    if (isVoid(expression.type))
        pre(text + ";");
    else
        result = keep({text, Binding::ePrimary, false}, expression.type, expression.place);
    pre_.insert(pre_.end(), after.begin(), after.end());
    return result;
}

StageWriter::Instance& FunctionWriter::calledInstance(const Expression& expression)
{
    const Function* function = expression.function;
    const std::size_t first = expression.kind == Kind::eMethodCall ? 1 : 0;
    if (first == 1 && function->owner->isInterface) {
        const Record* record = recordOf(*expression.operands[0]);
        for (const Function* target : targetsOf(stage_.tree(), *function)) {
            if (target->owner == record)
                function = target;
        }
        if (!function->body)
            refuse(expression.place,
                   "interface '" + function->owner->name + "' is not connected to a struct");
    }
    if (function->definition)
        function = function->definition;
    std::vector<const Record*> records;
    for (std::size_t i = 0; i < function->parameters.size(); ++i) {
        const Type& type = function->parameters[i]->type;
        const bool isInterface = type.record && type.record->isInterface;
        records.push_back(isInterface ? recordOf(*expression.operands[first + i]) : nullptr);
    }
    return stage_.instance(*function, records);
}

std::string FunctionWriter::selfArgument(const Expression& object, bool isWritten, Use use)
{
    if (!isWritten) {
        const GlslValue self = value(object);
        const bool isKept = use == Use::eBeforeEffects && !isUnchanging(object);
        return isKept ? keep(self, object.type, object.place).text : alone(self);
    }
    const Variable* variable = rootOf(object).variable;
    if (!object.isLvalue || (variable && variable->isConst))
        return temporary(object.type, object.place, value(object).text);
    return target(object, use).text;
}

/// The arguments of a call, from left to right, each as it stands in its parentheses.
std::vector<GlslValue> FunctionWriter::arguments(const std::vector<Expression*>& operands,
                                                 std::size_t first,
                                                 const std::vector<Passed>& parameters)
{
    std::vector<GlslValue> values;
    for (std::size_t i = first; i < operands.size(); ++i) {
        std::size_t mark = pre_.size();
        const Passed& parameter = parameters[i - first];
        GlslValue each = argument(*operands[i], parameter.type, parameter.direction,
                                  haveEffects(operands, i + 1));
        for (std::size_t earlier = first; earlier < i; ++earlier) {
            if (parameters[earlier - first].direction == Direction::eIn)
                keepBefore(mark, values[earlier - first], *operands[earlier]);
        }
        values.push_back(std::move(each));
    }
    return values;
}

/// @param mayChange whether a later argument has effects
GlslValue FunctionWriter::argument(const Expression& expression, const Type& parameter,
                                   Direction direction, bool mayChange)
{
    const SourcePlace place = expression.place;
    if (direction == Direction::eIn) {
        GlslValue in = value(expression);
        const bool isKept = mayChange && !in.isStable && !isUnchanging(expression) &&
                            expression.type.scalar != Type::Scalar::eSampler;
        if (isKept)
            in = keep(in, expression.type, place);
        return {alone(in), Binding::eAssign, in.isStable};
    }
    const bool isInterface = parameter.record && parameter.record->isInterface;
    const bool isSame = expression.type == parameter || isInterface;
    const Target given = target(expression, mayChange || expression.hasEffects ? Use::eBeforeEffects
                                            : isSame                           ? Use::eOnce
                                                                               : Use::eRepeated);
    // A scalar's ".x" is the scalar, but its ".xx" is no lvalue; nor are a matrix's elements.
    if (isSame && given.parts.empty() && !isDynamicComponent(expression))
        return {given.text, Binding::ePrimary, true};
    const bool isRead = direction == Direction::eInOut;
    const GlslValue start = isRead ? convert(read(given, place), expression.type, parameter, place)
                                   : zero(parameter, place);
    const std::string name = temporary(parameter, place, start.text);
    Lines kept = std::exchange(pre_, {});
    const GlslValue back =
        stable(convert({name, Binding::ePrimary, true}, parameter, expression.type, place),
               expression.type, place);
    if (given.parts.empty())
        pre(given.text + " = " + back.text + ";");
    else
        assign(given, back.text, place);
    for (const Line& each : std::exchange(pre_, std::move(kept)))
        post_.push_back(each);
    return {name, Binding::ePrimary, true};
}

GlslValue FunctionWriter::intrinsicValue(const Expression& expression)
{
    const Intrinsic& intrinsic = *expression.intrinsic;
    const Expression& firstOperand = *expression.operands[0];
    if ((intrinsic.name == "any" || intrinsic.name == "all") && isGlslScalar(firstOperand.type))
        return value(firstOperand);
    if (intrinsic.isForFragments && stage_.stage() == Stage::eVertex)
        refuse(expression.place, "'" + expression.text + "' in a vertex program");
    const bool isOld = stage_.version() < 130 && !intrinsic.glsl120.empty();
    std::string_view form = isOld ? intrinsic.glsl120 : intrinsic.glsl;
    if (form == "-") {
        refuse(expression.place, "GLSL 1.20 has no '" + expression.text + "'");
        return {"0", Binding::ePrimary, true};
    }
    if (form[0] == '!') {
        stage_.requireTextureLod();
        form.remove_prefix(1);
    }
    std::vector<Type> types;
    for (const Expression* operand : expression.operands)
        types.push_back(operand->type);
    const auto call = matchIntrinsic(intrinsic, types);
    std::vector<Passed> parameters;
    for (std::size_t i = 0; i < types.size(); ++i)
        parameters.push_back(
            {call->parameters[i], call->isOut[i] ? Direction::eOut : Direction::eIn});
    const auto passed = arguments(expression.operands, 0, parameters);
    if (form[0] == '@') {
        const std::size_t open = form.find('(');
        const std::string type =
            isNumeric(types[0]) ? stage_.typeName(call->parameters[0], expression.place) : "";
        const std::string name = stage_.helper(form.substr(1, open - 1), type);
        return completeCall(expression, name + filledIn(form.substr(open), passed));
    }
    return completeCall(expression, filledIn(form, passed));
}

/// Rows of the effect are columns of GLSL, so factors change sides: M v is "v * M".
GlslValue FunctionWriter::mulValue(const Expression& expression)
{
    const Expression& left = *expression.operands[0];
    const Expression& right = *expression.operands[1];
    const auto values = operandValues({&left, &right});
    const Type& a = left.type;
    const Type& b = right.type;
    const auto product = [](const GlslValue& first, const GlslValue& second) {
        return GlslValue{bound(first, Binding::eProduct) + " * " + bound(second, Binding::eUnary),
                         Binding::eProduct, false};
    };
    const auto call = [&](const char* name, const GlslValue& first, const GlslValue& second) {
        return GlslValue{std::string(name) + "(" + alone(first) + ", " + alone(second) + ")",
                         Binding::ePrimary, false};
    };
    if (isScalar(a) || isScalar(b) || (isGlslScalar(a) && isGlslScalar(b)))
        return product(values[0], values[1]);
    if (isGlslMatrix(a) || isGlslMatrix(b))
        return product(values[1], values[0]);
    // What is left are rows and columns.
    const bool isColumn = isMatrix(a) && a.columns == 1 && a.rows > 1;
    const bool isRow = isMatrix(b) && b.rows == 1 && b.columns > 1;
    if (isColumn && isRow)
        return call("outerProduct", values[1], values[0]);
    if (isGlslScalar(a) || isGlslScalar(b))
        return product(values[0], values[1]);
    return call("dot", values[0], values[1]);
}

GlslValue FunctionWriter::transposeValue(const Expression& expression)
{
    const Expression& operand = *expression.operands[0];
    const GlslValue matrix = value(operand);
    if (!isGlslMatrix(operand.type))
        return matrix; // a row as a column: the same components
    (void)stage_.typeName(expression.type, expression.place);
    return {"transpose(" + alone(matrix) + ")", Binding::ePrimary, false};
}

} // namespace EffectCompiler
