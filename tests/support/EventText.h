#pragma once

#include <OS/Windowing/iEventHandler.h>

#include <string>

/// The plain text form of an event, one word for its kind and then its fields:
///
///     mouse KIND X Y BUTTONS WHEEL MODIFIERS        key CODE MODIFIERS down|up
///     paint LEFT TOP RIGHT BOTTOM                   window KIND
///     timer ID         drop PATH         message
///
/// Codes and bit masks are hexadecimal. A path is the system's bytes, those that are no printable
/// ASCII (and "%") as %XX. Times are not part of it.
std::string toText(const iEventHandler::MouseEvent& event);
std::string toText(const iEventHandler::KeyEvent& event);
std::string toText(const iEventHandler::PaintEvent& event);
std::string toText(const iEventHandler::WindowEvent& event);
std::string toText(const iEventHandler::TimerEvent& event);
std::string toText(const iEventHandler::UserMessage& message);
std::string dropToText(const LightweightString<wchar_t>& path);
