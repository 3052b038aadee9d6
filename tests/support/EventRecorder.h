#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Windowing/iEventHandler.h>

#include <string>
#include <vector>

/// A handler that stands before another one, passes every event on, and writes it down.
///
/// It takes the place of the application's handler at the window; what it wrote can be played to a
/// handler later by EventPlayer. Used on the thread of the event loop.
class EventRecorder final : public iEventHandler
{
public:
    /// @param inner gets every event and gives the answers; null answers eContinue to all
    explicit EventRecorder(Tq::Ptr<iEventHandler> inner = nullptr);

    eRC handleMouse(const MouseEvent& event) override;
    eRC handleKey(const KeyEvent& event) override;
    eRC handlePaint(const PaintEvent& event) override;
    eRC handleWindowEvent(const WindowEvent& event) override;
    eRC handleTimer(const TimerEvent& event) override;
    eRC handleFileDrop(const LightweightString<wchar_t>& path) override;
    eRC handleUserMessage(const UserMessage& message) override;

    /// The events so far in the form of EventText.h, without times.
    const std::vector<std::string>& lines() const { return lines_; }
    /// Those whose first word is `kind`.
    std::vector<std::string> lines(const std::string& kind) const;
    void clear();

    /// The whole recording: one event a line, each after the milliseconds since the first.
    std::string recording() const;

private:
    void write(std::string line);

    Tq::Ptr<iEventHandler> inner_;
    std::vector<std::string> lines_;
    std::vector<double> timesMs_;
};

/// Plays a recording into a handler.
class EventPlayer
{
public:
    /// Reads a recording. Empty lines and lines that begin with "#" are skipped.
    explicit EventPlayer(const std::string& recording);

    /// Names the first line that is no event ("line 3: key 0x61"); empty when all are. What stands
    /// before that line can be played.
    const std::string& error() const { return error_; }
    bool atEnd() const { return next_ == events_.size(); }
    /// When the next event came, in milliseconds since the first; 0 at the end.
    double nextMs() const { return atEnd() ? 0.0 : events_[next_].timeMs; }
    /// Plays the next event.
    iEventHandler::eRC step(iEventHandler& handler);
    /// Plays what the user did (mouse, keys, drops), at once, up to the first answer that quits:
    /// for an application whose own window brings the other events.
    iEventHandler::eRC playInput(iEventHandler& handler);

private:
    struct Event
    {
        double timeMs;
        std::string text;
    };

    std::vector<Event> events_;
    std::size_t next_ = 0;
    std::string error_;
};
