#include "Model/TextField.h"

#include <OS/Windowing/KeyCodes.h>

#include <algorithm>

namespace Vantor {

void TextField::set(const Text& value)
{
    text = value.substr(0, kLongest);
    caret = anchor = text.size();
}

Text TextField::selected() const
{
    return text.substr(selectionStart(), selectionEnd() - selectionStart());
}

void TextField::selectAll()
{
    anchor = 0;
    caret = text.size();
}

void TextField::selectWord(std::uint32_t at)
{
    at = std::min(at, text.size());
    anchor = wordLeft(at == text.size() ? at : at + 1);
    caret = anchor;
    while (caret < text.size() && text[caret] != L' ')
        ++caret;
}

void TextField::moveTo(std::uint32_t position, bool select)
{
    caret = std::min(position, text.size());
    if (!select)
        anchor = caret;
}

void TextField::replaceSelection(const Text& with)
{
    const std::uint32_t start = selectionStart();
    text = text.substr(0, start) + with + text.substr(selectionEnd());
    caret = anchor = start + with.size();
}

void TextField::insert(const Text& typed)
{
    Text clean;
    const std::uint32_t kept = text.size() - (selectionEnd() - selectionStart());
    for (const wchar_t c : typed)
        if (c >= 32 && c != 127 && clean.size() + kept < kLongest)
            clean.push_back(c);
    replaceSelection(clean);
}

void TextField::backspace()
{
    if (!hasSelection() && caret > 0)
        anchor = caret - 1;
    replaceSelection(Text());
}

void TextField::erase()
{
    if (!hasSelection() && caret < text.size())
        anchor = caret + 1;
    replaceSelection(Text());
}

std::uint32_t TextField::wordLeft(std::uint32_t from) const
{
    while (from > 0 && text[from - 1] == L' ')
        --from;
    while (from > 0 && text[from - 1] != L' ')
        --from;
    return from;
}

std::uint32_t TextField::wordRight(std::uint32_t from) const
{
    while (from < text.size() && text[from] != L' ')
        ++from;
    while (from < text.size() && text[from] == L' ')
        ++from;
    return from;
}

bool TextField::key(std::uint32_t code, std::uint32_t modifiers)
{
    const bool select = (modifiers & Key::eShift) != 0;
    const bool byWord = (modifiers & Key::eControl) != 0;
    switch (code) {
    case Key::eLeft:
        if (hasSelection() && !select && !byWord)
            moveTo(selectionStart(), false);
        else
            moveTo(byWord ? wordLeft(caret) : caret - (caret > 0 ? 1 : 0), select);
        return true;
    case Key::eRight:
        if (hasSelection() && !select && !byWord)
            moveTo(selectionEnd(), false);
        else
            moveTo(byWord ? wordRight(caret) : caret + 1, select);
        return true;
    case Key::eHome:
        moveTo(0, select);
        return true;
    case Key::eEnd:
        moveTo(text.size(), select);
        return true;
    case Key::eBackspace:
        if (byWord && !hasSelection())
            anchor = wordLeft(caret);
        backspace();
        return true;
    case Key::eDelete:
        if (byWord && !hasSelection())
            anchor = wordRight(caret);
        erase();
        return true;
    default:
        break;
    }
    if (byWord) {
        if (code == 'a' || code == 'A')
            selectAll();
        return code == 'a' || code == 'A';
    }
    // Characters are code points; the codes of other keys lie above them.
    if (code < 32 || code == 127 || code > 0x10FFFF || (modifiers & (Key::eAlt | Key::eMeta)) != 0)
        return false;
    insert(Text(1, static_cast<wchar_t>(code)));
    return true;
}

} // namespace Vantor
