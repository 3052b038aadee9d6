#pragma once

#include "OS/Host/EffectCompiler/Messages.h"

#include <string_view>

namespace EffectCompiler {

/// A word of the source. Its text lies in the file that it was read from, or in the arena of what
/// was made while preprocessing; both live in a TokenList or a SourceFiles.
struct Token
{
    enum class Kind : std::uint8_t
    {
        eEnd,       ///< of the file
        eNewline,   ///< only before preprocessing
        eName,      ///< keywords too: what is one depends on where it stands
        eNumber,    ///< 1 .5 2.h 0x1F; also 2D, which names are pasted from
        eString,    ///< with its quotes and escapes
        eCharacter, ///< likewise
        eSymbol,
        eOther ///< what no effect contains, such as "@", or a quote or comment without its end
    };

    std::string_view text;
    SourcePlace place;
    Kind kind = Kind::eEnd;
    bool spaceBefore = false;
    bool isFinal = false; ///< the name of a macro met within its own expansion: expanded no more

    bool is(std::string_view symbol) const
    {
        // Asked more often than anything else: most differ in the first character.
        return kind == Kind::eSymbol && text[0] == symbol[0] && text.size() == symbol.size() &&
               (text.size() == 1 || text == symbol);
    }
    bool isName() const { return kind == Kind::eName; }
    bool isName(std::string_view name) const { return kind == Kind::eName && text == name; }
};

} // namespace EffectCompiler
