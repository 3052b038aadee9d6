#include "support/EventRecorder.h"

#include "support/EventText.h"

#include "OS/Mac/Core/PathText.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <sstream>
#include <utility>

namespace {

using eRC = iEventHandler::eRC;

// Reads one event and hands it to a handler, if there is one. @return nothing when it is no event
std::optional<eRC> dispatch(const std::string& text, iEventHandler* handler);

std::string unescaped(const std::string& text)
{
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            result += static_cast<char>(std::strtoul(text.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            result += text[i];
        }
    }
    return result;
}

std::int64_t now()
{
    return std::llround(OS()->utils()->timeNow());
}

std::optional<eRC> dispatchMouse(const char* fields, iEventHandler* handler)
{
    iEventHandler::MouseEvent event;
    if (std::sscanf(fields, "%u %d %d %x %d %x", &event.kind, &event.position.x, &event.position.y,
                    &event.buttons, &event.wheelDirection, &event.modifiers) != 6)
        return std::nullopt;
    event.time = now();
    return handler ? handler->handleMouse(event) : iEventHandler::eContinue;
}

std::optional<eRC> dispatchKey(const char* fields, iEventHandler* handler)
{
    iEventHandler::KeyEvent event;
    char direction[5] = {};
    if (std::sscanf(fields, "%x %x %4s", &event.code, &event.modifiers, direction) != 3)
        return std::nullopt;
    event.pressed = std::string(direction) == "down";
    if (!event.pressed && std::string(direction) != "up")
        return std::nullopt;
    return handler ? handler->handleKey(event) : iEventHandler::eContinue;
}

std::optional<eRC> dispatchPaint(const char* fields, iEventHandler* handler)
{
    iEventHandler::PaintEvent event;
    auto& area = event.damaged;
    if (std::sscanf(fields, "%d %d %d %d", &area.left, &area.top, &area.right, &area.bottom) != 4)
        return std::nullopt;
    return handler ? handler->handlePaint(event) : iEventHandler::eContinue;
}

std::optional<eRC> dispatchWindow(const char* fields, iEventHandler* handler)
{
    iEventHandler::WindowEvent event;
    if (std::sscanf(fields, "%d", &event.kind) != 1)
        return std::nullopt;
    return handler ? handler->handleWindowEvent(event) : iEventHandler::eContinue;
}

std::optional<eRC> dispatchTimer(const char* fields, iEventHandler* handler)
{
    iEventHandler::TimerEvent event;
    if (std::sscanf(fields, "%u", &event.timerID) != 1)
        return std::nullopt;
    event.time = now();
    return handler ? handler->handleTimer(event) : iEventHandler::eContinue;
}

std::optional<eRC> dispatch(const std::string& text, iEventHandler* handler)
{
    const std::size_t blank = text.find(' ');
    const std::string kind = text.substr(0, blank);
    const std::string fields = blank == std::string::npos ? "" : text.substr(blank + 1);
    if (kind == "mouse")
        return dispatchMouse(fields.c_str(), handler);
    if (kind == "key")
        return dispatchKey(fields.c_str(), handler);
    if (kind == "paint")
        return dispatchPaint(fields.c_str(), handler);
    if (kind == "window")
        return dispatchWindow(fields.c_str(), handler);
    if (kind == "timer")
        return dispatchTimer(fields.c_str(), handler);
    if (kind == "drop" && !fields.empty())
        return handler
                   ? handler->handleFileDrop(OSInternal::pathFromSystem(unescaped(fields).c_str()))
                   : iEventHandler::eContinue;
    if (kind == "message")
        return handler ? handler->handleUserMessage({}) : iEventHandler::eContinue;
    return std::nullopt;
}

} // namespace

EventRecorder::EventRecorder(Tq::Ptr<iEventHandler> inner) : inner_(std::move(inner)) {}

eRC EventRecorder::handleMouse(const MouseEvent& event)
{
    write(toText(event));
    return inner_ ? inner_->handleMouse(event) : eContinue;
}

eRC EventRecorder::handleKey(const KeyEvent& event)
{
    write(toText(event));
    return inner_ ? inner_->handleKey(event) : eContinue;
}

eRC EventRecorder::handlePaint(const PaintEvent& event)
{
    write(toText(event));
    return inner_ ? inner_->handlePaint(event) : eContinue;
}

eRC EventRecorder::handleWindowEvent(const WindowEvent& event)
{
    write(toText(event));
    return inner_ ? inner_->handleWindowEvent(event) : eContinue;
}

eRC EventRecorder::handleTimer(const TimerEvent& event)
{
    write(toText(event));
    return inner_ ? inner_->handleTimer(event) : eContinue;
}

eRC EventRecorder::handleFileDrop(const LightweightString<wchar_t>& path)
{
    write(dropToText(path));
    return inner_ ? inner_->handleFileDrop(path) : eContinue;
}

eRC EventRecorder::handleUserMessage(const UserMessage& message)
{
    write(toText(message));
    return inner_ ? inner_->handleUserMessage(message) : eContinue;
}

void EventRecorder::write(std::string line)
{
    lines_.push_back(std::move(line));
    timesMs_.push_back(OS()->utils()->timeNow());
}

std::vector<std::string> EventRecorder::lines(const std::string& kind) const
{
    std::vector<std::string> found;
    for (const std::string& line : lines_) {
        if (line == kind || line.rfind(kind + ' ', 0) == 0)
            found.push_back(line);
    }
    return found;
}

void EventRecorder::clear()
{
    lines_.clear();
    timesMs_.clear();
}

std::string EventRecorder::recording() const
{
    std::ostringstream text;
    for (std::size_t i = 0; i < lines_.size(); ++i)
        text << std::llround(timesMs_[i] - timesMs_.front()) << ' ' << lines_[i] << '\n';
    return text.str();
}

EventPlayer::EventPlayer(const std::string& recording)
{
    std::istringstream text(recording);
    std::string line;
    for (int number = 1; std::getline(text, line); ++number) {
        if (line.empty() || line.front() == '#')
            continue;
        char* end = nullptr;
        const double timeMs = std::strtod(line.c_str(), &end);
        const std::string event = *end == ' ' ? end + 1 : end;
        if (end == line.c_str() || !dispatch(event, nullptr)) {
            error_ = "line " + std::to_string(number) + ": " + line;
            return;
        }
        events_.push_back({timeMs, event});
    }
}

eRC EventPlayer::step(iEventHandler& handler)
{
    if (atEnd())
        return iEventHandler::eContinue;
    return dispatch(events_[next_++].text, &handler).value_or(iEventHandler::eContinue);
}

eRC EventPlayer::playInput(iEventHandler& handler)
{
    while (!atEnd()) {
        const std::string& text = events_[next_].text;
        const bool input = text.rfind("mouse ", 0) == 0 || text.rfind("key ", 0) == 0 ||
                           text.rfind("drop ", 0) == 0;
        if (!input)
            ++next_;
        else if (step(handler) == iEventHandler::eQuit)
            return iEventHandler::eQuit;
    }
    return iEventHandler::eContinue;
}
