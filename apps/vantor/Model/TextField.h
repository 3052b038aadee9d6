#pragma once

#include "Model/Text.h"

#include <cstdint>
#include <vector>

namespace Vantor {

/// One line of text that is being edited: the text, a caret and a selection. Plain data; the keys'
/// meanings are in key().
struct TextField
{
    static constexpr std::uint32_t kLongest = 80; ///< characters

    Text text;
    std::uint32_t caret = 0; ///< 0 to the text's length
    std::uint32_t anchor =
        0; ///< the other end of the selection; the caret when nothing is selected

    void set(const Text& value);
    std::uint32_t selectionStart() const { return caret < anchor ? caret : anchor; }
    std::uint32_t selectionEnd() const { return caret < anchor ? anchor : caret; }
    bool hasSelection() const { return caret != anchor; }
    Text selected() const;

    void selectAll();
    void selectWord(std::uint32_t at);
    /// Puts the caret somewhere; the selection grows with it, or is dropped.
    void moveTo(std::uint32_t position, bool select);
    /// Replaces the selection; control characters and what is too long are left out.
    void insert(const Text& typed);
    void backspace();
    void erase();

    /// Handles a key press. @return whether it was one for editing
    bool key(std::uint32_t code, std::uint32_t modifiers);

private:
    void replaceSelection(const Text& with);
    std::uint32_t wordLeft(std::uint32_t from) const;
    std::uint32_t wordRight(std::uint32_t from) const;
};

} // namespace Vantor
