#include "OS/Mac/Windowing/KeyboardState.h"

#include <OS/Windowing/KeyCodes.h>

#include <QGuiApplication>
#include <QKeyEvent>

std::atomic<std::uint32_t> KeyboardState::modifiers_{0};

namespace {

// Not an owner with a destructor: events may still come while the process's statics are destroyed.
OSInternal::KeyboardLayout* openKeyboard = nullptr;

} // namespace

std::uint32_t KeyboardState::setModifiersFromEvent(QKeyEvent* event)
{
    return setModifiersFromEventState(static_cast<unsigned int>(event->modifiers()));
}

std::uint32_t KeyboardState::setModifiersFromEventState(unsigned int qtModifiers)
{
    const std::uint32_t word = toModifiers(qtModifiers);
    modifiers_.store(word, std::memory_order_relaxed);
    return word;
}

std::uint32_t KeyboardState::toModifiers(unsigned int qtModifiers)
{
    std::uint32_t word = 0;
    if (qtModifiers & Qt::ShiftModifier)
        word |= Key::eShift;
    if (qtModifiers & Qt::ControlModifier)
        word |= Key::eControl;
    if (qtModifiers & Qt::MetaModifier)
        word |= Key::eMeta;
    if (qtModifiers & Qt::AltModifier)
        word |= Key::eAlt;
    return word;
}

OSInternal::KeyboardLayout& KeyboardState::keyboard()
{
    if (!openKeyboard) {
        const QByteArray platform = QGuiApplication::platformName().toLatin1();
        openKeyboard = OSInternal::makeKeyboardLayout(platform.constData()).release();
    }
    return *openKeyboard;
}

void KeyboardState::setKeyboard(std::unique_ptr<OSInternal::KeyboardLayout> keyboard)
{
    delete openKeyboard;
    openKeyboard = keyboard.release();
}
