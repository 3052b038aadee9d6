#include "support/EventText.h"

#include "OS/Mac/Core/PathText.h"

#include <cstdio>

namespace {

template <class... Fields>
std::string format(const char* form, Fields... fields)
{
    char line[160];
    std::snprintf(line, sizeof line, form, fields...);
    return line;
}

} // namespace

std::string toText(const iEventHandler::MouseEvent& event)
{
    return format("mouse %u %d %d 0x%x %d 0x%x", event.kind, event.position.x, event.position.y,
                  event.buttons, event.wheelDirection, event.modifiers);
}

std::string toText(const iEventHandler::KeyEvent& event)
{
    return format("key 0x%x 0x%x %s", event.code, event.modifiers, event.pressed ? "down" : "up");
}

std::string toText(const iEventHandler::PaintEvent& event)
{
    const auto& area = event.damaged;
    return format("paint %d %d %d %d", area.left, area.top, area.right, area.bottom);
}

std::string toText(const iEventHandler::WindowEvent& event)
{
    return format("window %d", event.kind);
}

std::string toText(const iEventHandler::TimerEvent& event)
{
    return format("timer %u", event.timerID);
}

std::string toText(const iEventHandler::UserMessage&)
{
    return "message";
}

std::string dropToText(const LightweightString<wchar_t>& path)
{
    std::string text = "drop ";
    for (const char c : OSInternal::pathToSystem(path)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte <= ' ' || byte == '%' || byte >= 0x7F)
            text += format("%%%02X", byte);
        else
            text += c;
    }
    return text;
}
