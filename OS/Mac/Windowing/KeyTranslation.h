#pragma once

#include <cstdint>
#include <optional>

/// From the toolkit's key codes to those of event records (Key::eCode).
namespace KeyTranslation {

/// The code of a key that is known by its place on the keyboard rather than by its character.
/// @param qtKey a Qt::Key, or 0
/// @return nothing when the key's character decides
std::optional<std::uint32_t> codeOf(int qtKey);

/// Whether a key is one of the characters that also stand on the numeric keypad: * + - . / 0 to 9
/// =.
bool isKeypadCharacter(int qtKey);

/// Shift, Control, Meta or Alt.
bool isModifier(int qtKey);

} // namespace KeyTranslation
