#pragma once

#include "OS/Host/EffectCompiler/Parser.h"
#include "OS/Host/EffectCompiler/Preprocessor.h"

#include <sstream>
#include <string>

/// Trees as text: everything in parentheses, one way to write each thing.
namespace EffectCompiler {

struct Parsed
{
    SyntaxTree tree;
    std::string listing;
};

inline std::unique_ptr<Parsed> parse(const std::string& text)
{
    auto parsed = std::make_unique<Parsed>();
    SourceFiles files;
    Messages messages;
    Preprocessor preprocessor(files, messages);
    Parser(preprocessor.run(*files.add("e.fx", text)), parsed->tree, messages).run();
    parsed->listing = messages.listing();
    return parsed;
}

std::string textOf(const Expression* expression);

inline std::string textOf(const std::vector<Expression*>& operands, std::size_t first = 0)
{
    std::string text;
    for (std::size_t i = first; i < operands.size(); ++i)
        text += (i == first ? "" : ", ") + textOf(operands[i]);
    return text;
}

inline std::string textOf(const Expression* expression)
{
    if (!expression)
        return "";
    const auto& operands = expression->operands;
    const std::string& text = expression->text;
    std::ostringstream number;
    switch (expression->kind) {
    case Expression::Kind::eNumber:
        number << expression->value << (expression->type.scalar == Type::Scalar::eFloat ? "f" : "");
        return number.str();
    case Expression::Kind::eBool:
        return expression->value != 0.0 ? "true" : "false";
    case Expression::Kind::eString:
        return '"' + text + '"';
    case Expression::Kind::eName:
        return text;
    case Expression::Kind::eUnary:
        return "(" + text + textOf(operands[0]) + ")";
    case Expression::Kind::ePostfix:
        return "(" + textOf(operands[0]) + text + ")";
    case Expression::Kind::eBinary:
    case Expression::Kind::eAssign:
        return "(" + textOf(operands[0]) + " " + text + " " + textOf(operands[1]) + ")";
    case Expression::Kind::eConditional:
        return "(" + textOf(operands[0]) + " ? " + textOf(operands[1]) + " : " +
               textOf(operands[2]) + ")";
    case Expression::Kind::eCall:
        return text + "(" + textOf(operands) + ")";
    case Expression::Kind::eMethodCall:
        return textOf(operands[0]) + "." + text + "(" + textOf(operands, 1) + ")";
    case Expression::Kind::eConstructor:
        return nameOf(expression->castType) + "(" + textOf(operands) + ")";
    case Expression::Kind::eCast:
        return "(" + nameOf(expression->castType) + ")" + textOf(operands[0]);
    case Expression::Kind::eIndex:
        return textOf(operands[0]) + "[" + textOf(operands[1]) + "]";
    case Expression::Kind::eMember:
        return textOf(operands[0]) + "." + text;
    case Expression::Kind::eList:
        return "{" + textOf(operands) + "}";
    }
    return "?";
}

inline std::string textOf(const Variable& variable)
{
    std::string text;
    text += variable.isStatic ? "static " : "";
    text += variable.isConst ? "const " : "";
    text += variable.isUniform ? "uniform " : "";
    text += variable.direction == Variable::Direction::eOut     ? "out "
            : variable.direction == Variable::Direction::eInOut ? "inout "
                                                                : "";
    text += nameOf(variable.type) + (variable.name.empty() ? "" : " " + variable.name);
    text += variable.semantic.empty() ? "" : " : " + variable.semantic;
    return text + (variable.initialiser ? " = " + textOf(variable.initialiser) : "");
}

inline std::string textOf(const Statement* statement)
{
    const auto block = [](const std::vector<Statement*>& statements) {
        std::string text;
        for (const Statement* each : statements)
            text += (text.empty() ? "" : " ") + textOf(each);
        return text;
    };
    if (!statement)
        return "";
    const std::string expression = textOf(statement->expression);
    switch (statement->kind) {
    case Statement::Kind::eExpression:
        return expression + ";";
    case Statement::Kind::eDeclare: {
        std::string text;
        for (const Variable* variable : statement->variables)
            text += (text.empty() ? "" : " ") + textOf(*variable) + ";";
        return text;
    }
    case Statement::Kind::eBlock:
        return "{" + block(statement->statements) + "}";
    case Statement::Kind::eIf:
        return "if (" + expression + ") " + textOf(statement->statements[0]) +
               (statement->statements.size() > 1 ? " else " + textOf(statement->statements[1])
                                                 : "");
    case Statement::Kind::eFor:
        return "for (" + textOf(statement->statements[0]) + " " + expression + "; " +
               textOf(statement->step) + ") " + textOf(statement->body);
    case Statement::Kind::eWhile:
        return "while (" + expression + ") " + textOf(statement->body);
    case Statement::Kind::eDo:
        return "do " + textOf(statement->body) + " while (" + expression + ")";
    case Statement::Kind::eSwitch:
        return "switch (" + expression + ") " + textOf(statement->body);
    case Statement::Kind::eCase:
        return "case " + expression + ":";
    case Statement::Kind::eDefault:
        return "default:";
    case Statement::Kind::eReturn:
        return "return " + expression + ";";
    case Statement::Kind::eBreak:
        return "break;";
    case Statement::Kind::eContinue:
        return "continue;";
    case Statement::Kind::eDiscard:
        return "discard;";
    }
    return "?";
}

inline std::string textOf(const Function& function)
{
    std::string text = nameOf(function.result) + " ";
    text += (function.owner ? function.owner->name + "." : "") + function.name + "(";
    for (const Variable* parameter : function.parameters)
        text += (parameter == function.parameters[0] ? "" : ", ") + textOf(*parameter);
    text += ")" + (function.semantic.empty() ? "" : " : " + function.semantic);
    return text + (function.body ? " " + textOf(function.body) : ";");
}

/// Structs, globals, then functions, a line each.
inline std::string textOf(const SyntaxTree& tree)
{
    std::string text;
    for (const Record* record : tree.records) {
        text += (record->isInterface ? "interface " : "struct ") + record->name;
        text += record->implements ? " : " + record->implements->name : "";
        text += " {";
        for (const Field& field : record->fields)
            text += " " + nameOf(field.type) + " " + field.name +
                    (field.semantic.empty() ? "" : " : " + field.semantic) + ";";
        text += " }\n";
    }
    for (const Variable* variable : tree.globals)
        text += textOf(*variable) + ";\n";
    for (const Function* function : tree.functions)
        text += textOf(*function) + "\n";
    return text;
}

} // namespace EffectCompiler
