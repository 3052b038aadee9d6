#include "OS/Host/EffectCompiler/ConstantEvaluator.h"
#include "OS/Host/EffectCompiler/Flow.h"
#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>
#include <utility>

namespace EffectCompiler {
namespace {

using Kind = Statement::Kind;
using Direction = Variable::Direction;

/// Whether the function surely gives all of an out parameter a value, before anything else.
bool isSetAtOnce(const Function& function, const Variable& parameter)
{
    for (const Statement* statement : function.body->statements) {
        if (statement->kind == Kind::eDeclare)
            continue;
        const Expression* expression = statement->expression;
        if (statement->kind != Kind::eExpression || !expression)
            return false;
        if (expression->kind != Expression::Kind::eAssign || expression->text != "=")
            return false;
        if (expression->operands[0]->variable == &parameter)
            return true;
    }
    return false;
}

bool isBlock(const Statement* statement)
{
    return statement && statement->kind == Kind::eBlock;
}

} // namespace

FunctionWriter::FunctionWriter(StageWriter& stage, StageWriter::Instance* instance)
    : stage_(stage), instance_(instance)
{
}

void FunctionWriter::line(SourcePlace place, const std::string& text)
{
    out().add(place, depth_, text);
}

void FunctionWriter::flush(LineWriter& out, SourcePlace place, int depth)
{
    for (const Line& each : std::exchange(pre_, {}))
        out.add(place, depth + each.depth, each.text);
}

void FunctionWriter::writeFunction()
{
    const Function& function = *instance_->function;
    stage_.names().startFunction();
    stage_.names().openScope();
    writeParameters();
    line({}, "{");
    depth_ = 1;
    for (const Variable* parameter : function.parameters) {
        if (parameter->direction == Direction::eOut && !isSetAtOnce(function, *parameter))
            line(parameter->place,
                 locals_[parameter] + " = " + zero(parameter->type, parameter->place).text + ";");
    }
    for (const Statement* statement : function.body->statements)
        write(*statement);
    if (!isVoid(function.result) && reachesEnd(*function.body))
        line({}, "return " + zero(function.result, function.place).text + ";");
    depth_ = 0;
    out().add({}, 0, "}");
    stage_.names().closeScope();
}

void FunctionWriter::writeParameters()
{
    const Function& function = *instance_->function;
    std::string text;
    const auto add = [&](const Variable& parameter, const Type& type, const char* direction) {
        const std::string& name = locals_[&parameter] =
            stage_.names().local(parameter.name.empty() ? "unused" : parameter.name);
        text += (text.empty() ? "" : ", ") + std::string(direction) +
                stage_.declaration(type, name, parameter.place);
    };
    if (function.self) {
        Variable& self = *function.self;
        const std::string& name = locals_[&self] = stage_.names().local("self");
        text = (self.isWritten ? "inout " : "") + stage_.declaration(self.type, name, self.place);
    }
    for (std::size_t i = 0; i < function.parameters.size(); ++i) {
        const Variable& parameter = *function.parameters[i];
        const Record* record = instance_->records[i];
        concrete_[&parameter] = record;
        const char* direction = parameter.direction == Direction::eIn    ? ""
                                : parameter.direction == Direction::eOut ? "out "
                                                                         : "inout ";
        add(parameter, record ? recordType(record) : parameter.type, direction);
    }
    line(function.place, stage_.arrayTypeName(function.result, function.place) + " " +
                             instance_->name + "(" + text + ")");
}

void FunctionWriter::write(const Statement& statement)
{
    if (stage_.isRefused())
        return;
    switch (statement.kind) {
    case Kind::eExpression:
        if (statement.expression)
            writeExpression(*statement.expression);
        break;
    case Kind::eDeclare:
        for (const Variable* variable : statement.variables)
            writeDeclaration(*variable);
        break;
    case Kind::eBlock:
        line(statement.place, "{");
        writeBlock(&statement);
        line({}, "}");
        break;
    case Kind::eIf:
        writeIf(statement, "");
        break;
    case Kind::eFor:
        writeFor(statement);
        break;
    case Kind::eWhile:
        writeLoop(statement, statement.expression, nullptr, true);
        break;
    case Kind::eDo:
        writeDo(statement);
        break;
    case Kind::eSwitch:
        writeSwitch(statement);
        break;
    case Kind::eCase:
        line(statement.place, "case " + value(*statement.expression).text + ":");
        break;
    case Kind::eDefault:
        line(statement.place, "default:");
        break;
    case Kind::eReturn:
        writeReturn(statement);
        break;
    case Kind::eBreak:
        line(statement.place, "break;");
        break;
    case Kind::eContinue:
        line(statement.place, "continue;");
        break;
    case Kind::eDiscard:
        if (stage_.stage() == Stage::eVertex)
            refuse(statement.place, "'discard' in a vertex program");
        line(statement.place, "discard;");
        break;
    }
}

/// The statements of a block, or the one statement that stands for it, one step further in.
void FunctionWriter::writeBlock(const Statement* statement)
{
    stage_.names().openScope();
    ++depth_;
    if (isBlock(statement)) {
        for (const Statement* inner : statement->statements)
            write(*inner);
    } else if (statement) {
        write(*statement);
    }
    --depth_;
    stage_.names().closeScope();
}

/// "float x = 1.0": what must run before it is flushed by the caller.
std::string FunctionWriter::declared(const Variable& variable)
{
    constexpr std::size_t kMostNumbersToClear = 32;
    const Type& type = variable.type;
    std::string initial;
    const std::size_t numbers = numbersOf(type);
    if (variable.initialiser)
        initial = " = " + alone(value(*variable.initialiser));
    else if (numbers > 0 && numbers <= kMostNumbersToClear)
        initial = " = " + zero(type, variable.place).text; // what it never got is no noise
    const std::string& name = locals_[&variable] = stage_.names().local(variable.name);
    return stage_.declaration(type, name, variable.place) + initial;
}

void FunctionWriter::writeDeclaration(const Variable& variable)
{
    const std::string text = declared(variable);
    flushHere(variable.place);
    line(variable.place, text + ";");
}

void FunctionWriter::writeExpression(const Expression& expression)
{
    const GlslValue result = value(expression);
    flushHere(expression.place);
    if (expression.hasEffects && !result.isStable && !result.text.empty())
        line(expression.place, result.text + ";");
    else if (isVoid(expression.type) && !result.text.empty())
        line(expression.place, result.text + ";");
}

void FunctionWriter::writeIf(const Statement& statement, const std::string& before)
{
    const GlslValue condition = value(*statement.expression);
    flushHere(statement.place);
    line(statement.place, before + "if (" + condition.text + ") {");
    writeBlock(statement.statements[0]);
    const Statement* other = statement.statements.size() > 1 ? statement.statements[1] : nullptr;
    if (!other) {
        line({}, "}");
        return;
    }
    if (other->kind == Kind::eIf && !other->expression->hasEffects) {
        const Lines kept = std::exchange(pre_, {});
        (void)value(*other->expression); // may it stand behind "else"?
        const bool isPlain = std::exchange(pre_, kept).empty();
        if (isPlain)
            return writeIf(*other, "} else ");
    }
    line({}, "} else {");
    writeBlock(other);
    line({}, "}");
}

std::string FunctionWriter::forStart(const Statement& statement)
{
    std::string text;
    for (const Statement* first : statement.statements) {
        if (first->kind == Kind::eDeclare && first->variables.size() == 1) {
            text = declared(*first->variables[0]);
        } else if (first->kind == Kind::eExpression && first->expression) {
            text = value(*first->expression).text;
        } else if (first->kind == Kind::eDeclare) {
            flushHere(statement.place);
            write(*first);
        }
    }
    return text;
}

void FunctionWriter::writeFor(const Statement& statement)
{
    std::size_t declared = 0;
    for (const Statement* first : statement.statements)
        declared += first->variables.size();
    const bool isOuter = declared > 1; // GLSL declares what is of one type; a block holds them all
    stage_.names().openScope();
    if (isOuter) {
        line(statement.place, "{");
        ++depth_;
    }
    const std::string start = forStart(statement);
    flushHere(statement.place);
    const GlslValue condition = statement.expression ? value(*statement.expression) : GlslValue{};
    const Lines beforeCondition = std::exchange(pre_, {});
    const GlslValue step = statement.step ? value(*statement.step) : GlslValue{};
    const Lines beforeStep = std::exchange(pre_, {});
    if (beforeCondition.empty() && beforeStep.empty()) {
        const std::string second = condition.text.empty() ? "" : " " + condition.text;
        const std::string third = step.text.empty() ? "" : " " + step.text;
        line(statement.place, "for (" + start + ";" + second + ";" + third + ") {");
        writeBlock(statement.body);
        line({}, "}");
    } else {
        if (!start.empty()) {
            line(statement.place, "{");
            ++depth_;
            line(statement.place, start + ";");
        }
        writeLoop(statement, statement.expression, statement.step, true);
        if (!start.empty()) {
            --depth_;
            line({}, "}");
        }
    }
    if (isOuter) {
        --depth_;
        line({}, "}");
    }
    stage_.names().closeScope();
}

/// A loop whose condition or step may need statements before it. "continue" must come to them too,
/// so they stand at the start of the body, and a flag tells the first round.
void FunctionWriter::writeLoop(const Statement& statement, const Expression* condition,
                               const Expression* step, bool isConditionFirst)
{
    const Lines kept = std::exchange(pre_, {});
    const GlslValue plain = condition ? value(*condition) : GlslValue{"true"};
    if (pre_.empty() && !step && isConditionFirst) {
        line(statement.place, "while (" + plain.text + ") {");
        writeBlock(statement.body);
        line({}, "}");
        pre_ = kept;
        return;
    }
    pre_.clear();
    stage_.names().openScope();
    const bool hasRounds = step || !isConditionFirst;
    const std::string again = hasRounds ? stage_.names().local("again") : "";
    if (hasRounds)
        line(statement.place, "bool " + again + " = false;");
    line(statement.place, "while (true) {");
    ++depth_;
    if (step) {
        line({}, "if (" + again + ") {");
        ++depth_;
        writeExpression(*step);
        --depth_;
        line({}, "}");
        line({}, again + " = true;");
    }
    const auto leaveUnless = [&] {
        const GlslValue test = value(*condition);
        flushHere(statement.place);
        line(statement.place, "if (!" + bound(test, Binding::eUnary) + ") break;");
    };
    if (condition && isConditionFirst) {
        leaveUnless();
    } else if (condition) {
        line({}, "if (" + again + ") {");
        ++depth_;
        leaveUnless();
        --depth_;
        line({}, "}");
        line({}, again + " = true;");
    }
    --depth_;
    writeBlock(statement.body);
    line({}, "}");
    stage_.names().closeScope();
    pre_ = kept;
}

void FunctionWriter::writeDo(const Statement& statement)
{
    const Lines kept = std::exchange(pre_, {});
    const GlslValue condition = value(*statement.expression);
    const bool isPlain = std::exchange(pre_, kept).empty();
    if (!isPlain)
        return writeLoop(statement, statement.expression, nullptr, false);
    line(statement.place, "do {");
    writeBlock(statement.body);
    line({}, "} while (" + condition.text + ");");
}

void FunctionWriter::writeSwitch(const Statement& statement)
{
    if (stage_.version() < 130)
        refuse(statement.place, "GLSL 1.20 has no 'switch'");
    const GlslValue selector = value(*statement.expression);
    flushHere(statement.place);
    line(statement.place, "switch (" + selector.text + ") {");
    stage_.names().openScope();
    bool isLabelLast = false;
    if (statement.body) {
        for (const Statement* inner : statement.body->statements) {
            isLabelLast = inner->kind == Kind::eCase || inner->kind == Kind::eDefault;
            depth_ += isLabelLast ? 0 : 1;
            write(*inner);
            depth_ -= isLabelLast ? 0 : 1;
        }
    }
    if (isLabelLast)
        line({}, "    break;"); // a label must stand before something
    stage_.names().closeScope();
    line({}, "}");
}

void FunctionWriter::writeReturn(const Statement& statement)
{
    if (!statement.expression)
        return line(statement.place, "return;");
    if (isVoid(statement.expression->type)) {
        writeExpression(*statement.expression);
        return line(statement.place, "return;");
    }
    const GlslValue result = value(*statement.expression);
    flushHere(statement.place);
    line(statement.place, "return " + result.text + ";");
}

} // namespace EffectCompiler
