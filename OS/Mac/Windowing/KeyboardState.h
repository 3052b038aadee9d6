#pragma once

#include "OS/Host/Keyboard/KeyboardLayout.h"

#include <atomic>
#include <cstdint>
#include <memory>

class QKeyEvent;

/// The modifier keys that were down at the last key event, and the keyboard that the events come
/// from.
///
/// Events set the word on the thread of the event loop; getModifiers may be called from any thread
/// and may answer late. The keyboard is used on the thread of the event loop.
class KeyboardState
{
public:
    KeyboardState() = delete;

    /// Keeps an event's modifiers as Key::eModifier bits. @return the new word
    static std::uint32_t setModifiersFromEvent(QKeyEvent* event);
    /// The same from a Qt::KeyboardModifiers word.
    static std::uint32_t setModifiersFromEventState(unsigned int qtModifiers);
    static std::uint32_t getModifiers() { return modifiers_.load(std::memory_order_relaxed); }

    /// A Qt::KeyboardModifiers word as Key::eModifier bits, without keeping it.
    static std::uint32_t toModifiers(unsigned int qtModifiers);

    /// The keyboard of the toolkit's platform, opened by the first call; never closed.
    static OSInternal::KeyboardLayout& keyboard();
    /// Puts another keyboard in its place; null has the next call open the platform's again.
    static void setKeyboard(std::unique_ptr<OSInternal::KeyboardLayout> keyboard);

private:
    static std::atomic<std::uint32_t> modifiers_;
};
