#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Painting/iRegion.h>
#include <OS/Primitives/Rectangle.h>
#include <OS/Windowing/iEventHandler.h>
#include <OS/Windowing/iMouseCursor.h>
#include <OS/Windowing/iRootWindow.h>
#include <OS/Windowing/iStatusWindow.h>
#include <OS/Windowing/iTimer.h>
#include <OS/Windowing/iVideoWindow.h>

#include <cstdint>
#include <set>
#include <vector>

/// Windows, fonts, cursors and the event loop, reached as OS()->windowMgr().
///
/// Everything belongs to the thread of the event loop, which is the one that made the Qt
/// application object (the library makes it on first use, where the application has not).
/// isKeyPressed may be called from any thread and may then answer late. Without a display the Qt
/// application runs off screen: fonts, images and regions work, windows are invisible.
class OS_API iWindowManager : public virtual iObject
{
public:
    ~iWindowManager() override = default;

    /// Makes the one root window, not yet realised. A second one prints the assertion report for
    /// "rootWindow_ == NULL" at "OS/Mac/QtWindowManager line 40" and replaces it.
    /// @return null, after "OpenGL not available - denied!", where OpenGL is not available
    virtual Tq::Ptr<iRootWindow> createRootWindow() = 0;
    /// A timer whose ticks go to a handler, which it keeps.
    virtual Tq::Ptr<iTimer> createTimer(unsigned int intervalMs,
                                        Tq::Ptr<iEventHandler> handler) = 0;
    /// @param size pixels
    /// @param weight 100 to 900, 400 is normal; 0 takes it from the flags
    /// @param flags iFont::eStyle bits
    virtual Tq::Ptr<iFont> createFont(const LightweightString<wchar_t>& name, unsigned int size,
                                      unsigned int weight, unsigned int flags) = 0;
    /// A region of at most 15 rectangles. More print the assertion report for "data.size() <
    /// kMaxSize" at "OS/Mac/QtRegion line 39", and the first 16 are used.
    virtual Tq::Ptr<iRegion> createRegion(const std::vector<Tq::Rectangle<int>>& rectangles) = 0;
    virtual Tq::Ptr<iMouseCursor> createMouseCursor(iMouseCursor::eStockCursor stock) = 0;
    /// @return null when the image has no pixels
    virtual Tq::Ptr<iMouseCursor> createMouseCursor(Tq::Ptr<iHostImage> image,
                                                    const XY<int>& hotSpot) = 0;
    /// Installs a cursor on the root window; null gives the arrow.
    virtual void setMouseCursor(Tq::Ptr<iMouseCursor> cursor) = 0;
    virtual void showMouseCursor(bool shown) = 0;
    virtual Tq::Ptr<iStatusWindow> createStatusWindow() = 0;
    /// A window for video in the root window made last, visible at once.
    /// @param position of its top left corner in the root window @param size logical pixels
    /// @return null where no root window is realised, OpenGL is not to be had, or after shutdown()
    virtual Tq::Ptr<iVideoWindow> createVideoWindow(const XY<int>& position,
                                                    const XY<int>& size) = 0;
    /// A window for video that covers the monitor that holds the middle of the root window, else
    /// the first one: see iVideoWindow::setMonitor. Its keys and mouse events go to the root
    /// window, where there is one.
    /// @return null where there is no monitor, OpenGL is not to be had, or after shutdown()
    virtual Tq::Ptr<iVideoWindow> createVideoWindowFullscreen() = 0;

    /// Adds the names of the installed typefaces.
    virtual void getAvailableFonts(std::set<LightweightString<wchar_t>>& names) = 0;
    /// "Tahoma", which falls back to the best typeface installed.
    virtual LightweightString<wchar_t> getDefaultFont() = 0;
    /// 7: all three capabilities.
    virtual unsigned int getCaps() = 0;

    /// Answers only for 0x100000, 27, 32, 0x1000000, 0x2000000 and 0x4000000, by testing that bit
    /// mask against the modifiers of the last key event; every other code is false, deliberately.
    virtual bool isKeyPressed(unsigned int code) = 0;
    /// In logical pixels of the desktop.
    virtual XY<int> getMousePosition() = 0;
    /// Handles what the window system has sent, once, except keys and the mouse, which wait for the
    /// loop. Does nothing inside handlePaint: a paint must not begin inside a paint.
    virtual void despatchPendingEvents() = 0;
    /// Runs the event loop until a handler quits, in any of its operations, from realize on: every
    /// top-level window is closed then. @return its exit code, 0 when a handler quit
    virtual int startEventLoop() = 0;
    /// Releases what must go before the Qt application does: closes the video windows, then the
    /// root window and the cursor, the pool of GL widgets, and everything of OpenGL, the updater's
    /// thread included. Call it after the loop. Nothing of the library's windows or of OpenGL may
    /// be used afterwards. A second call does nothing.
    virtual void shutdown() = 0;

    virtual void init() = 0;      ///< does nothing
    virtual void deInit() = 0;    ///< does nothing
    virtual void heartbeat() = 0; ///< does nothing
};
