#pragma once

#include "Windowing/InputRig.h"
#include "support/EventRecorder.h"

#include "OS/Mac/Windowing/QtWindowManager.h"

#include <OS/Primitives/NormalisedRGB.h>

#include <QImage>
#include <functional>
#include <gtest/gtest.h>
#include <string>

/// Runs the event loop until a condition holds. @return whether it came to hold, within ten seconds
bool waitFor(const std::function<bool()>& condition);
/// Runs the event loop until nothing is left to do for a moment: for "nothing more comes" only.
void settle();

/// The screen as it is now, in device pixels.
QImage grabScreen();

/// A handler that does what a test tells it.
class ScriptedHandler final : public iEventHandler
{
public:
    /// What to do with an event, by the first word of its text.
    std::function<eRC(const std::string& kind)> answer;
    std::function<void(const PaintEvent&)> onPaint;

    eRC handleMouse(const MouseEvent&) override { return ask("mouse"); }
    eRC handleKey(const KeyEvent&) override { return ask("key"); }
    eRC handlePaint(const PaintEvent& event) override
    {
        if (onPaint)
            onPaint(event);
        return ask("paint");
    }
    eRC handleWindowEvent(const WindowEvent& event) override
    {
        return ask("window " + std::to_string(event.kind));
    }
    eRC handleTimer(const TimerEvent&) override { return ask("timer"); }
    eRC handleFileDrop(const LightweightString<wchar_t>&) override { return ask("drop"); }
    eRC handleUserMessage(const UserMessage&) override { return ask("message"); }

private:
    eRC ask(const std::string& kind) const { return answer ? answer(kind) : eContinue; }
};

/// A root window on the screen, a handler that writes down what it gets, and hands on the keyboard.
class WindowTest : public ::testing::Test
{
protected:
    WindowTest();
    ~WindowTest() override;

    /// 400 x 300 at (200, 150), with a title bar.
    static iRootWindow::InitArgs usualArgs();
    /// Makes the window and waits until it is painted and, where it can be, active.
    void open(iRootWindow::InitArgs args = usualArgs());
    /// Fills a rectangle through a renderer of the window's.
    void fill(const Tq::Rectangle<int>& area, const NormalisedRGB& colour);
    /// What the screen shows at a position of the window, 0xRRGGBB.
    std::uint32_t pixelAt(int x, int y) const;
    bool waitForPixel(int x, int y, std::uint32_t colour);
    /// Puts the mouse at a position of the window.
    void pointAt(int x, int y);
    /// Waits until as many events of a kind have come, and returns them.
    std::vector<std::string> waitForLines(const std::string& kind, std::size_t count);
    QWidget* widget() const;
    double ratio() const;

    InputRig input;
    QtWindowManager manager;
    Tq::Ptr<ScriptedHandler> handler;
    Tq::Ptr<EventRecorder> events;
    Tq::Ptr<iRootWindow> window;
};
