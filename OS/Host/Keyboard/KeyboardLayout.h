#pragma once

#include <cstdint>
#include <memory>

namespace OSInternal {

/// What the keyboard itself knows and the toolkit does not tell: the layout in use, and the keys
/// that are down.
///
/// The only door from the window code to the host's keyboard. Back ends: X11 (X11KeyboardLayout),
/// and one that knows nothing, for every other platform. Used on the thread of the event loop.
/// Answers are read afresh at each call, so a layout that is switched while the program runs is
/// followed; a call costs up to a millisecond, so callers ask only where the event itself does not
/// say enough.
class KeyboardLayout
{
public:
    virtual ~KeyboardLayout() = default;

    /// The character that a key makes in the current layout while no modifier is held.
    /// @param nativeScanCode the key's number as the window system reports it
    /// @return its Unicode code point, or 0 when the key makes none or the keyboard cannot be asked
    virtual char32_t plainCharacter(std::uint32_t nativeScanCode) = 0;

    /// Whether a key is held at this moment; false when the keyboard cannot be asked.
    virtual bool isKeyDown(std::uint32_t nativeScanCode) = 0;
};

/// The keyboard of a window-system platform.
/// @param platform the toolkit's name of it; "xcb" is asked through a connection of its own to the
///                 display that DISPLAY names
/// @return never null: where there is nothing to ask, a keyboard that answers 0 and false
std::unique_ptr<KeyboardLayout> makeKeyboardLayout(const char* platform);

} // namespace OSInternal
