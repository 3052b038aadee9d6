#pragma once

#include "Drawing/LiveGraphs.h"
#include "Model/Gather.h"
#include "Model/MidiWatcher.h"
#include "Model/SerialWatcher.h"
#include "Model/VolumeReader.h"
#include "View/Interaction.h"
#include "common/Resources.h"
#include "common/WindowPlace.h"

#include <OS/Windowing/iEventHandler.h>
#include <OS/Windowing/iMouseCursor.h>
#include <OS/Windowing/iRootWindow.h>
#include <OS/Windowing/iTimer.h>

#include <memory>

namespace Quay {

/// The board: receives a window's events, takes readings, changes the state through Interaction,
/// and draws it.
///
/// Works without a window too: events change the state and nothing is read or drawn. Everything
/// runs on the thread of the event loop, except the questions about volumes.
class Board final : public iEventHandler
{
public:
    explicit Board(BoardState state);

    const BoardState& state() const { return state_; }

    /// Draws in this window and takes readings from now on, until detach(). The window keeps the
    /// board, so that the two hold each other in between.
    /// @param settings remember the window and the preferences; null: nothing does
    void attach(Tq::Ptr<iRootWindow> window, Tq::Ptr<iSettings> settings, const WindowPlace& place);
    /// Saves what is to be remembered, and lets go of the window.
    void detach();
    /// Ends the program after a time of running.
    void quitAfter(int seconds);
    /// Whether the board is on the screen, as far as it can be known.
    bool hasDrawn() const { return !frameRequested_ && live_.isSettled(); }

    eRC handleMouse(const MouseEvent& event) override;
    eRC handleKey(const KeyEvent& event) override;
    eRC handlePaint(const PaintEvent& event) override;
    eRC handleWindowEvent(const WindowEvent& event) override;
    eRC handleTimer(const TimerEvent& event) override;
    eRC handleFileDrop(const LightweightString<wchar_t>& path) override;
    eRC handleUserMessage(const UserMessage& message) override;

private:
    void draw();
    void requestFrame();
    /// What every change of the state is followed by. @return whether the program goes on
    eRC changed();
    void readAll();
    void readOften();
    void readSeldom();
    void openFolder();
    void watchPort();
    void watchMidi();
    void noticeUnplugging();
    void noticeLostMidi();
    void keepPreferences();
    void keepPlace();
    void saveSoon();
    void save();
    void keepCursor();
    bool isTick(const Tq::Ptr<iTimer>& timer, const TimerEvent& event) const;

    BoardState state_;
    Interaction interaction_;
    Tq::Ptr<iRootWindow> window_;
    Tq::Ptr<iSettings> settings_;
    std::unique_ptr<Resources> resources_;
    LiveGraphs live_;
    Meters meters_;
    std::unique_ptr<VolumeReader> volumes_;
    std::unique_ptr<SerialWatcher> serial_;
    std::unique_ptr<MidiWatcher> midi_;
    Preferences keptPreferences_;
    WindowPlace place_;
    bool frameRequested_ = false;

    Tq::Ptr<iTimer> oftenTimer_;
    Tq::Ptr<iTimer> seldomTimer_;
    Tq::Ptr<iTimer> saveTimer_;
    Tq::Ptr<iTimer> quitTimer_;
    iMouseCursor::eStockCursor cursor_ = iMouseCursor::eArrow;
};

} // namespace Quay
