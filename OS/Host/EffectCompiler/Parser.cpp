#include "OS/Host/EffectCompiler/Parser.h"

#include "OS/Host/EffectCompiler/Literals.h"

#include <algorithm>

namespace EffectCompiler {

Parser::Nesting::Nesting(Parser& parser) : parser_(parser)
{
    if (parser_.nesting_ >= Limits::kDepth) {
        parser_.messages_.error(parser_.peek().place, "the effect is nested too deeply");
        throw Stop();
    }
    ++parser_.nesting_;
}

Parser::Parser(std::vector<Token> tokens, SyntaxTree& tree, Messages& messages)
    : tokens_(std::move(tokens)), tree_(tree), messages_(messages),
      evaluator_([this](std::string_view name) { return find(name); })
{
    if (tokens_.empty())
        tokens_.emplace_back();
}

void Parser::run()
{
    try {
        while (peek().kind != Token::Kind::eEnd) {
            const std::size_t start = position_;
            try {
                parseTopLevel();
            } catch (const Fault&) {
                leaveScope(0);
                openRecords_.clear();
                recover(start);
                accept("}");
            }
        }
    } catch (const Stop&) {
    }
}

const Token& Parser::peek(std::size_t ahead) const
{
    return tokens_[std::min(position_ + ahead, tokens_.size() - 1)];
}

Token Parser::take()
{
    const Token token = peek();
    if (position_ + 1 < tokens_.size())
        ++position_;
    return token;
}

bool Parser::accept(std::string_view symbol)
{
    if (!peek().is(symbol))
        return false;
    take();
    return true;
}

/// Without regard to case.
bool Parser::acceptKeyword(std::string_view keyword)
{
    if (!isKeyword(peek(), keyword))
        return false;
    take();
    return true;
}

bool Parser::isKeyword(const Token& token, std::string_view keyword) const
{
    return token.isName() && isSameName(token.text, keyword);
}

void Parser::expect(std::string_view symbol)
{
    if (accept(symbol))
        return;
    // What is missing is missed where the line before ends.
    const bool isAfter = symbol == ";" && position_ != 0;
    const SourcePlace place = isAfter ? tokens_[position_ - 1].place : peek().place;
    const std::string found = peek().kind == Token::Kind::eEnd
                                  ? "the end of the file"
                                  : "'" + std::string(peek().text) + "'";
    failAt(place, "expected '" + std::string(symbol) + "' before " + found);
}

/// @param what it is the name of, for the message
std::string Parser::expectName(std::string_view what)
{
    if (!peek().isName())
        fail("expected the name of a " + std::string(what) + " before '" +
             std::string(peek().text) + "'");
    const auto type = builtInType(peek().text);
    const bool isObject =
        type && (type->scalar == Type::Scalar::eString || type->scalar == Type::Scalar::eTexture ||
                 type->scalar == Type::Scalar::eSampler);
    if (type && !isObject)
        fail("'" + std::string(peek().text) + "' is a type, not a name");
    return std::string(take().text);
}

void Parser::fail(const std::string& text)
{
    failAt(peek().place, text);
}

void Parser::failAt(SourcePlace place, const std::string& text)
{
    messages_.error(place, text);
    if (messages_.isFull())
        throw Stop();
    throw Fault();
}

void Parser::failUnexpected()
{
    if (peek().kind == Token::Kind::eEnd)
        fail("unexpected end of the file");
    fail("unexpected '" + std::string(peek().text) + "'");
}

/// Goes behind the next ";", or behind the block that comes before it, or to the "}" that ends the
/// block around.
/// @param start where that began which was not understood
void Parser::recover(std::size_t start)
{
    // The ";" in the head of a loop end nothing.
    int parentheses = 0;
    if (tokens_[start].isName("for")) {
        for (std::size_t i = start; i < position_; ++i)
            parentheses += tokens_[i].is("(") ? 1 : tokens_[i].is(")") ? -1 : 0;
    }
    int depth = 0;
    for (; peek().kind != Token::Kind::eEnd; take()) {
        if (parentheses > 0 && depth == 0)
            parentheses += peek().is("(") ? 1 : peek().is(")") ? -1 : 0;
        if (peek().is("{")) {
            ++depth;
        } else if (peek().is("}")) {
            if (depth == 0)
                return;
            if (--depth == 0) {
                take();
                accept(";");
                return;
            }
        } else if (peek().is(";") && depth == 0 && parentheses <= 0) {
            take();
            return;
        }
    }
}

void Parser::skipBrackets()
{
    const std::string_view open = peek().text;
    const std::string_view close = open == "(" ? ")" : open == "[" ? "]" : "}";
    int depth = 0;
    do {
        if (peek().kind == Token::Kind::eEnd)
            failUnexpected();
        depth += peek().is(open) ? 1 : peek().is(close) ? -1 : 0;
        take();
    } while (depth > 0);
}

} // namespace EffectCompiler
