#include "OS/Host/EffectCompiler/Lexer.h"

#include <algorithm>
#include <array>

namespace EffectCompiler {
namespace {

bool isDigit(char character)
{
    return character >= '0' && character <= '9';
}

bool isSuffix(char character)
{
    return std::string_view("hHfFlLuU").find(character) != std::string_view::npos;
}

/// Longest first among those that start alike.
constexpr std::array<std::string_view, 24> kLongSymbols = {
    "<<=", ">>=", "...", "##", "::", "++", "--", "+=", "-=", "*=", "/=", "%=",
    "&=",  "|=",  "^=",  "&&", "||", "==", "!=", "<=", ">=", "<<", ">>", "->"};
/// What they go on with.
constexpr std::string_view kLongSecond = "<>.#:+-=&|";

constexpr std::string_view kSymbols = "{}()[]<>;:,.?=+-*/%&|^!~#";

} // namespace

bool isNameStart(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           character == '_';
}

bool isNamePart(char character)
{
    return isNameStart(character) || isDigit(character);
}

Token Lexer::next()
{
    Token token;
    token.spaceBefore = skipSpace();
    token.place = place_;
    if (isCommentOpen_) {
        isCommentOpen_ = false;
        token.kind = Token::Kind::eOther;
        token.text = "/*";
        return token;
    }
    if (position_ >= text_.size())
        return token;

    const std::size_t start = position_;
    const char character = at(0);
    if (character == '\n') {
        token.kind = Token::Kind::eNewline;
        ++position_;
        ++place_.line;
    } else if (isNameStart(character)) {
        token.kind = Token::Kind::eName;
        while (isNamePart(at(0)))
            ++position_;
    } else if (isDigit(character) || (character == '.' && isDigit(at(1)))) {
        token.kind = lexNumber();
    } else if (character == '"' || character == '\'') {
        token.kind = lexQuoted(character);
    } else {
        token.kind = lexSymbol();
    }
    token.text = text_.substr(start, position_ - start);
    return token;
}

bool Lexer::skipSpace()
{
    const std::size_t start = position_;
    for (;;) {
        const char character = at(0);
        if (position_ < text_.size() &&
            (character == ' ' || character == '\t' || character == '\0' || character == '\v' ||
             character == '\f')) {
            ++position_;
        } else if (character == '/' && at(1) == '/') {
            position_ = std::min(text_.find('\n', position_), text_.size());
        } else if (character == '/' && at(1) == '*') {
            skipBlockComment();
        } else {
            return position_ != start;
        }
    }
}

void Lexer::skipBlockComment()
{
    const std::size_t end = text_.find("*/", position_ + 2);
    if (end == std::string_view::npos) {
        position_ = text_.size();
        isCommentOpen_ = true;
        return;
    }
    for (; position_ < end; ++position_) {
        if (text_[position_] == '\n')
            ++place_.line;
    }
    position_ = end + 2;
}

Token::Kind Lexer::lexNumber()
{
    const auto skipDigits = [&] {
        while (isDigit(at(0)))
            ++position_;
    };
    skipDigits();
    // "1.5", "1.", "1.h" and "1.e3", but "1.xxx" is a swizzle of 1.
    const bool isExponent = (at(1) == 'e' || at(1) == 'E') &&
                            (isDigit(at(2)) || ((at(2) == '+' || at(2) == '-') && isDigit(at(3))));
    const bool isSuffixed = isSuffix(at(1)) && !isNamePart(at(2));
    if (at(0) == '.' && (!isNameStart(at(1)) || isExponent || isSuffixed)) {
        ++position_;
        skipDigits();
    }
    if ((at(0) == 'e' || at(0) == 'E') && (at(1) == '+' || at(1) == '-') && isDigit(at(2)))
        position_ += 2;
    while (isNamePart(at(0)))
        ++position_;
    return Token::Kind::eNumber;
}

Token::Kind Lexer::lexQuoted(char quote)
{
    for (std::size_t end = position_ + 1; end < text_.size() && text_[end] != '\n'; ++end) {
        if (text_[end] == '\\' && end + 1 < text_.size() && text_[end + 1] != '\n') {
            ++end;
        } else if (text_[end] == quote) {
            position_ = end + 1;
            return quote == '"' ? Token::Kind::eString : Token::Kind::eCharacter;
        }
    }
    // An apostrophe may be part of a text that nobody compiles; a string's line is lost.
    position_ = quote == '"' ? std::min(text_.find('\n', position_), text_.size()) : position_ + 1;
    return Token::Kind::eOther;
}

Token::Kind Lexer::lexSymbol()
{
    const std::string_view rest = text_.substr(position_);
    const bool mayBeLong = kLongSecond.find(at(1)) != std::string_view::npos;
    for (const std::string_view symbol : kLongSymbols) {
        if (mayBeLong && rest.starts_with(symbol)) {
            position_ += symbol.size();
            return Token::Kind::eSymbol;
        }
    }
    if (kSymbols.find(rest.front()) != std::string_view::npos) {
        ++position_;
        return Token::Kind::eSymbol;
    }
    do
        ++position_;
    while ((at(0) & 0x80) != 0); // a character of several bytes
    return Token::Kind::eOther;
}

std::optional<std::string_view> Lexer::headerName(bool& isSystem)
{
    skipSpace();
    const char open = at(0);
    if (open != '"' && open != '<')
        return {};
    isSystem = open == '<';
    const std::size_t end = text_.find_first_of(isSystem ? ">\n" : "\"\n", position_ + 1);
    if (end == std::string_view::npos || text_[end] == '\n')
        return {};
    const std::string_view name = text_.substr(position_ + 1, end - position_ - 1);
    position_ = end + 1;
    return name;
}

std::string_view Lexer::restOfLine()
{
    const std::size_t end = std::min(text_.find('\n', position_), text_.size());
    const std::string_view rest = text_.substr(position_, end - position_);
    position_ = end;
    return rest;
}

void Lexer::placeNextLine(SourcePlace place)
{
    place_.file = place.file;
    place_.line = place.line;
    // The newline that ends this line counts.
    if (position_ < text_.size() && text_[position_] == '\n')
        --place_.line;
}

std::string cleaned(std::string text)
{
    if (text.starts_with("\xEF\xBB\xBF"))
        text.erase(0, 3);
    if (text.find_first_of("\r\\") == std::string::npos)
        return text;
    std::string result;
    result.reserve(text.size());
    std::size_t joined = 0; // line ends to put back
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto lineEnd = [&](std::size_t at) -> std::size_t {
            if (at >= text.size() || (text[at] != '\r' && text[at] != '\n'))
                return 0;
            return text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n' ? 2 : 1;
        };
        if (text[i] == '\\') {
            if (const std::size_t length = lineEnd(i + 1)) {
                i += length;
                ++joined;
                continue;
            }
        }
        const std::size_t length = lineEnd(i);
        if (length == 0) {
            result += text[i];
            continue;
        }
        result.append(joined + 1, '\n');
        joined = 0;
        i += length - 1;
    }
    return result;
}

} // namespace EffectCompiler
