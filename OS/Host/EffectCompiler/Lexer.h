#pragma once

#include "OS/Host/EffectCompiler/Token.h"

#include <optional>
#include <string>
#include <string_view>

namespace EffectCompiler {

/// Cuts a text into tokens. Comments are spaces.
class Lexer
{
public:
    /// @param text stays where it is; see cleaned()
    /// @param place of its first line
    Lexer(std::string_view text, SourcePlace place) : text_(text), place_(place) {}

    /// @return after the last one eEnd, again and again
    Token next();
    /// The file that an #include names, if one stands next: "name" or <name>, without escapes.
    /// @param isSystem gets whether it is <name>
    std::optional<std::string_view> headerName(bool& isSystem);
    /// What is left of this line, comments too.
    std::string_view restOfLine();
    /// The next line gets this place.
    void placeNextLine(SourcePlace place);
    SourcePlace place() const { return place_; }

private:
    char at(std::size_t offset) const
    {
        return position_ + offset < text_.size() ? text_[position_ + offset] : '\0';
    }
    /// @return whether there was any
    bool skipSpace();
    void skipBlockComment();
    Token::Kind lexNumber();
    Token::Kind lexQuoted(char quote);
    Token::Kind lexSymbol();

    std::string_view text_;
    std::size_t position_ = 0;
    SourcePlace place_;
    bool isCommentOpen_ = false;
};

/// A file's bytes as the lexer wants them: lines end in "\n", and those that end in a backslash are
/// joined with the next (the line ends that this takes away follow the joined line, so that the
/// lines behind it keep their numbers). A UTF-8 byte order mark is taken away.
std::string cleaned(std::string text);

bool isNameStart(char character);
bool isNamePart(char character);

} // namespace EffectCompiler
