#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/Rectangle.h>
#include <OS/Windowing/KeyCodes.h>

#include <cstdint>

/// What the application implements to receive its window's events.
///
/// Every operation is called on the thread of the event loop, with no lock held. Each answers
/// whether the program goes on; it may quit in any of them.
class OS_API iEventHandler : public iObject
{
public:
    enum eRC : int
    {
        eContinue = 0,
        eQuit = 1 /* every other value goes on */
    };

    struct MouseEvent
    {
        enum eKind : std::uint32_t
        {
            eLeftUp = 1,
            eLeftDown = 2, ///< a double click is a second press
            eOtherUp = 3,
            eOtherDown = 4,
            eWheel = 5,
            eMove = 6 ///< not sent within 80 ms of the last press, deliberately
        };
        /// The reverse of the toolkit's order, deliberately.
        enum eButton : std::uint32_t
        {
            eRight = 1,
            eLeft = 2,
            eMiddle = 4
        };

        std::int64_t time = 0; ///< milliseconds, iUtils::timeNow() rounded
        XY<int> position;      ///< in the window, logical pixels
        std::uint32_t kind = 0;
        std::uint32_t buttons = 0;       ///< held when the event came; a press includes its own
        std::int32_t wheelDirection = 0; ///< +1 away from the user, -1 towards; 0 for other kinds
        std::uint32_t modifiers = 0;     ///< Key::eModifier bits
    };

    struct KeyEvent
    {
        std::uint32_t reserved = 0;
        /// A character, a Key::eCode, or 0. A modifier's press carries 0 and its release the code
        /// of the last key pressed, once: deliberate.
        std::uint32_t code = 0;
        std::uint32_t modifiers = 0; ///< Key::eModifier bits
        std::uint32_t reserved2 = 0;
        bool pressed = false; ///< a held key is many presses and one release
    };

    struct PaintEvent
    {
        Tq::Rectangle<int> damaged; ///< in the window, logical pixels
    };

    struct WindowEvent
    {
        enum eKind : std::int32_t
        {
            eResized = 1,
            eCloseRequested = 4, ///< the window stays open unless the answer is eQuit
            eShown = 5,          ///< also: gained the keyboard
            eHidden = 6,         ///< also: lost the keyboard
            eCreated = 7
        };

        std::uint32_t reserved = 0;
        std::int32_t kind = 0;
    };

    struct TimerEvent
    {
        std::uint32_t timerID = 0; ///< iTimer::getID() of the timer that ticked
        std::int64_t time = 0;     ///< milliseconds, iUtils::timeNow() rounded
    };

    /// The event that iRootWindow::postUserMessage sends; it carries nothing.
    struct UserMessage
    {
    };

    virtual eRC handleMouse(const MouseEvent& event) = 0;
    virtual eRC handleKey(const KeyEvent& event) = 0;
    /// Called while the window paints: renderers got from it now draw straight into it.
    virtual eRC handlePaint(const PaintEvent& event) = 0;
    virtual eRC handleWindowEvent(const WindowEvent& event) = 0;
    virtual eRC handleTimer(const TimerEvent& event) = 0;
    /// Called once for each local file dropped on the window, until one answers eQuit. Other URLs
    /// are skipped.
    virtual eRC handleFileDrop(const LightweightString<wchar_t>& path) = 0;
    virtual eRC handleUserMessage(const UserMessage& message) = 0;
};
