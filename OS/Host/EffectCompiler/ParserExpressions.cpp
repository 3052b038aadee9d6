// The part of the parser that reads expressions.
#include "OS/Host/EffectCompiler/Literals.h"
#include "OS/Host/EffectCompiler/Operators.h"
#include "OS/Host/EffectCompiler/Parser.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

constexpr std::array<std::string_view, 11> kAssignments = {
    "=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="};

constexpr std::array<std::string_view, 16> kNoNames = {
    "if",    "else",     "for",    "while",   "do",     "switch",  "case",   "default",
    "break", "continue", "return", "discard", "struct", "typedef", "static", "const"};

const BinaryOperator* binaryOperator(const Token& token)
{
    if (token.kind != Token::Kind::eSymbol)
        return nullptr;
    const auto found = std::find_if(std::begin(kBinaryOperators), std::end(kBinaryOperators),
                                    [&](const auto& each) { return token.is(each.symbol); });
    return found == std::end(kBinaryOperators) ? nullptr : found;
}

} // namespace

Expression* Parser::make(Expression::Kind kind, SourcePlace place,
                         std::vector<Expression*> operands, std::string text)
{
    Expression& expression = tree_.expressions.emplace_back();
    expression.kind = kind;
    expression.place = place;
    expression.operands = std::move(operands);
    expression.text = std::move(text);
    for (const Expression* operand : expression.operands)
        expression.depth = std::max(expression.depth, operand->depth + 1);
    if (expression.depth > Limits::kOperators) {
        messages_.error(place, "the expression is too long");
        throw Stop();
    }
    return &expression;
}

Expression* Parser::parseExpression()
{
    Expression* left = parseAssignment();
    while (peek().is(",")) {
        const SourcePlace place = take().place;
        left = make(Expression::Kind::eBinary, place, {left, parseAssignment()}, ",");
    }
    return left;
}

Expression* Parser::parseAssignment()
{
    const Nesting nesting(*this);
    Expression* target = parseConditional();
    if (peek().kind != Token::Kind::eSymbol || peek().text.back() != '=' ||
        std::find(kAssignments.begin(), kAssignments.end(), peek().text) == kAssignments.end())
        return target;
    const Token symbol = take();
    return make(Expression::Kind::eAssign, symbol.place, {target, parseAssignment()},
                std::string(symbol.text));
}

Expression* Parser::parseConditional()
{
    Expression* condition = parseBinary(1);
    if (!peek().is("?"))
        return condition;
    const SourcePlace place = take().place;
    Expression* first = parseAssignment();
    expect(":");
    return make(Expression::Kind::eConditional, place, {condition, first, parseAssignment()});
}

Expression* Parser::parseBinary(int lowest)
{
    Expression* left = parseUnary();
    for (;;) {
        const BinaryOperator* found = binaryOperator(peek());
        if (!found || found->precedence < lowest)
            return left;
        const SourcePlace place = take().place;
        Expression* right = parseBinary(found->precedence + 1);
        left = make(Expression::Kind::eBinary, place, {left, right}, std::string(found->symbol));
    }
}

Expression* Parser::parseUnary()
{
    const Nesting nesting(*this);
    for (const std::string_view symbol : {"-", "+", "!", "~", "++", "--"}) {
        if (!peek().is(symbol))
            continue;
        const SourcePlace place = take().place;
        return make(Expression::Kind::eUnary, place, {parseUnary()}, std::string(symbol));
    }
    return isCastAhead() ? parseCast() : parsePostfix();
}

/// "(float3)x", "(float[2])x"; but "(f)" and "(x) - 1" are none.
bool Parser::isCastAhead() const
{
    if (!peek().is("(") || !peek(1).isName())
        return false;
    const auto type = typeNamed(peek(1));
    if (!type || type->scalar == Type::Scalar::eTexture || type->scalar == Type::Scalar::eSampler ||
        type->scalar == Type::Scalar::eString)
        return false;
    std::size_t ahead = 2;
    if (peek(2).is("<"))
        return peek(1).text == "vector" || peek(1).text == "matrix";
    while (peek(ahead).is("[") && peek(ahead + 2).is("]"))
        ahead += 3;
    if (!peek(ahead).is(")"))
        return false;
    const Token& next = peek(ahead + 1);
    constexpr std::array<std::string_view, 6> kStarts = {"(", "-", "+", "!", "~", "{"};
    return next.kind == Token::Kind::eName || next.kind == Token::Kind::eNumber ||
           (next.kind == Token::Kind::eSymbol &&
            (std::find(kStarts.begin(), kStarts.end(), next.text) != kStarts.end() ||
             next.text == "++" || next.text == "--"));
}

Expression* Parser::parseCast()
{
    const SourcePlace place = take().place;
    Type type = parseType();
    addDimensions(type, parseDimensions(), place);
    expect(")");
    Expression* cast =
        make(Expression::Kind::eCast, place, {peek().is("{") ? parseInitialiser() : parseUnary()});
    cast->castType = std::move(type);
    return cast;
}

Expression* Parser::parsePostfix()
{
    Expression* expression = parsePrimary();
    for (;;) {
        const SourcePlace place = peek().place;
        if (accept("[")) {
            expression = make(Expression::Kind::eIndex, place, {expression, parseExpression()});
            expect("]");
        } else if (accept(".")) {
            if (!peek().isName())
                failUnexpected();
            const std::string name(take().text);
            if (!peek().is("(")) {
                expression = make(Expression::Kind::eMember, place, {expression}, name);
                continue;
            }
            std::vector<Expression*> operands = parseArguments();
            operands.insert(operands.begin(), expression);
            expression = make(Expression::Kind::eMethodCall, place, std::move(operands), name);
        } else if (peek().is("++") || peek().is("--")) {
            expression =
                make(Expression::Kind::ePostfix, place, {expression}, std::string(take().text));
        } else {
            return expression;
        }
    }
}

Expression* Parser::parsePrimary()
{
    const Token token = peek();
    if (accept("(")) {
        Expression* inside = parseExpression();
        expect(")");
        return inside;
    }
    if (token.kind == Token::Kind::eNumber) {
        const auto number = parseNumber(token.text);
        if (!number)
            fail("'" + std::string(token.text) + "' is no number");
        take();
        Expression* expression = make(Expression::Kind::eNumber, token.place);
        expression->value = number->value;
        expression->type = number->type;
        return expression;
    }
    if (token.kind == Token::Kind::eString) {
        std::string text;
        while (peek().kind == Token::Kind::eString)
            text += parseString(take().text);
        return make(Expression::Kind::eString, token.place, {}, std::move(text));
    }
    if (!token.isName() ||
        std::find(kNoNames.begin(), kNoNames.end(), token.text) != kNoNames.end())
        failUnexpected();
    if (isKeyword(token, "true") || isKeyword(token, "false")) {
        take();
        Expression* expression = make(Expression::Kind::eBool, token.place);
        expression->value = isKeyword(token, "true");
        expression->type.scalar = Type::Scalar::eBool;
        return expression;
    }
    const bool isTemplate = (token.text == "vector" || token.text == "matrix") && peek(1).is("<");
    if (isTypeAhead() && (peek(1).is("(") || isTemplate)) {
        Type type = parseType();
        Expression* expression =
            make(Expression::Kind::eConstructor, token.place, parseArguments());
        expression->castType = std::move(type);
        return expression;
    }
    take();
    if (peek().is("("))
        return make(Expression::Kind::eCall, token.place, parseArguments(),
                    std::string(token.text));
    return make(Expression::Kind::eName, token.place, {}, std::string(token.text));
}

/// With their parentheses.
std::vector<Expression*> Parser::parseArguments()
{
    std::vector<Expression*> arguments;
    expect("(");
    if (accept(")"))
        return arguments;
    do
        arguments.push_back(parseAssignment());
    while (accept(","));
    expect(")");
    return arguments;
}

Expression* Parser::parseInitialiser()
{
    if (!peek().is("{"))
        return parseAssignment();
    const Nesting nesting(*this);
    const SourcePlace place = take().place;
    std::vector<Expression*> items;
    while (!peek().is("}")) {
        items.push_back(parseInitialiser());
        if (!accept(","))
            break;
    }
    expect("}");
    return make(Expression::Kind::eList, place, std::move(items));
}

} // namespace EffectCompiler
