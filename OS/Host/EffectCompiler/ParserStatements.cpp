// The part of the parser that reads statements.
#include "OS/Host/EffectCompiler/Parser.h"

namespace EffectCompiler {

Statement* Parser::makeStatement(Statement::Kind kind, SourcePlace place)
{
    Statement& statement = tree_.statements.emplace_back();
    statement.kind = kind;
    statement.place = place;
    return &statement;
}

Statement* Parser::parseBlock()
{
    const Nesting nesting(*this);
    Statement* block = makeStatement(Statement::Kind::eBlock, peek().place);
    expect("{");
    const std::size_t scope = locals_.size();
    while (!peek().is("}")) {
        if (peek().kind == Token::Kind::eEnd)
            failAt(block->place, "'{' without '}'");
        const std::size_t start = position_;
        try {
            block->statements.push_back(parseStatement());
        } catch (const Fault&) {
            recover(start);
        }
    }
    take();
    leaveScope(scope);
    return block;
}

Statement* Parser::parseStatement()
{
    const Nesting nesting(*this);
    while (peek().is("[")) // "[unroll]" and the like only advise
        skipBrackets();
    if (peek().is("{"))
        return parseBlock();
    const Token token = peek();
    if (accept(";"))
        return makeStatement(Statement::Kind::eExpression, token.place);
    if (Statement* statement = parseKeywordStatement(token))
        return statement;
    if (isDeclarationAhead())
        return parseDeclaration();
    Statement* statement = makeStatement(Statement::Kind::eExpression, token.place);
    statement->expression = parseExpression();
    expect(";");
    return statement;
}

/// @return null for what does not begin with a keyword
Statement* Parser::parseKeywordStatement(const Token& keyword)
{
    if (!keyword.isName())
        return nullptr;
    const auto simple = [&](Statement::Kind kind, std::string_view end) {
        Statement* statement = makeStatement(kind, take().place);
        expect(end);
        return statement;
    };
    if (keyword.text == "if")
        return parseIf();
    if (keyword.text == "for")
        return parseFor();
    if (keyword.text == "break")
        return simple(Statement::Kind::eBreak, ";");
    if (keyword.text == "continue")
        return simple(Statement::Kind::eContinue, ";");
    if (keyword.text == "discard")
        return simple(Statement::Kind::eDiscard, ";");
    if (keyword.text == "default")
        return simple(Statement::Kind::eDefault, ":");
    Statement* statement = nullptr;
    if (keyword.text == "return") {
        statement = makeStatement(Statement::Kind::eReturn, take().place);
        if (!peek().is(";"))
            statement->expression = parseExpression();
        expect(";");
    } else if (keyword.text == "while") {
        statement = makeStatement(Statement::Kind::eWhile, take().place);
        statement->expression = parseParenthesised();
        statement->body = parseStatement();
    } else if (keyword.text == "do") {
        statement = makeStatement(Statement::Kind::eDo, take().place);
        statement->body = parseStatement();
        if (!peek().isName("while"))
            fail("expected 'while' after the body of 'do'");
        take();
        statement->expression = parseParenthesised();
        expect(";");
    } else if (keyword.text == "switch") {
        statement = makeStatement(Statement::Kind::eSwitch, take().place);
        statement->expression = parseParenthesised();
        statement->body = parseBlock();
    } else if (keyword.text == "case") {
        statement = makeStatement(Statement::Kind::eCase, take().place);
        statement->expression = parseExpression();
        expect(":");
    }
    return statement;
}

Statement* Parser::parseIf()
{
    Statement* statement = makeStatement(Statement::Kind::eIf, take().place);
    statement->expression = parseParenthesised();
    statement->statements.push_back(parseStatement());
    if (peek().isName("else")) {
        take();
        statement->statements.push_back(parseStatement());
    }
    return statement;
}

Statement* Parser::parseFor()
{
    Statement* statement = makeStatement(Statement::Kind::eFor, take().place);
    const std::size_t scope = locals_.size();
    expect("(");
    const Token first = peek();
    Statement* start = nullptr;
    if (isDeclarationAhead()) {
        start = parseDeclaration();
    } else {
        start = makeStatement(Statement::Kind::eExpression, first.place);
        if (!first.is(";"))
            start->expression = parseExpression();
        expect(";");
    }
    statement->statements.push_back(start);
    if (!peek().is(";"))
        statement->expression = parseExpression();
    expect(";");
    if (!peek().is(")"))
        statement->step = parseExpression();
    expect(")");
    statement->body = parseStatement();
    leaveScope(scope);
    return statement;
}

Statement* Parser::parseDeclaration()
{
    Statement* statement = makeStatement(Statement::Kind::eDeclare, peek().place);
    if (peek().isName("typedef")) {
        parseTypedef();
        return statement;
    }
    const Qualifiers qualifiers = parseQualifiers();
    const Type type = parseType();
    if (accept(";")) // of a struct
        return statement;
    parseDeclarators(qualifiers, type, statement->variables, false);
    expect(";");
    return statement;
}

Expression* Parser::parseParenthesised()
{
    expect("(");
    Expression* expression = parseExpression();
    expect(")");
    return expression;
}

} // namespace EffectCompiler
