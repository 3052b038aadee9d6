#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Painting/iPixelGuard.h>
#include <OS/Painting/iRegion.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Windowing/iEventHandler.h>
#include <OS/Windowing/iTimer.h>

#include <cstdint>

class QWidget;

/// The application's top-level window, made by iWindowManager::createRootWindow and given life by
/// realize. It goes with its last reference.
///
/// Everything runs on the thread of the event loop, except postUserMessage, which may be called
/// from any thread. Sizes and positions are logical pixels.
class OS_API iRootWindow : public virtual iObject
{
public:
    struct InitArgs
    {
        XY<int> size;           ///< of the client area; not positive: the whole monitor
        XY<int> position;       ///< of the top left corner on the desktop
        bool maximised = false; ///< on the monitor that holds `position`
        bool titleBar =
            true; ///< false: no frame (and full screen where maximised or without a size)
        bool stayOnTop = false;
        bool visible = true; ///< show it at once
        LightweightString<wchar_t> title;
        Tq::Ptr<iHostImage> icon; ///< or null
        Tq::Ptr<iRegion> shape;   ///< or null: a rectangle
        Tq::Ptr<iEventHandler>
            eventHandler; ///< or null; kept until it is replaced or the window goes
    };

    ~iRootWindow() override = default;

    /// Makes the window, in place of the one it made before. The handler gets WindowEvent::eCreated
    /// before this returns; eQuit as an answer ends the event loop that is started next.
    /// @return always true
    virtual bool realize(const InitArgs& args) = 0;
    virtual void setEventHandler(Tq::Ptr<iEventHandler> handler) = 0;

    /// Size of the client area; (0, 0) before realize.
    virtual XY<int> getSize() const = 0;
    virtual XY<int> getPosition() const = 0;
    /// The client area as a rectangle at (0, 0).
    virtual Tq::Rectangle<int> getUserArea() const = 0;

    /// False exactly while the window fills the screen.
    virtual bool isTitleBarEnabled() const = 0;
    /// false fills the screen without a frame; true goes back to what was before, maximised or
    /// normal. The window stays on the screen meanwhile; the window manager carries it out in its
    /// own time.
    virtual void enableTitleBar(bool enabled) = 0;
    virtual bool isMinimised() const = 0;
    virtual bool isMaximised() const = 0;
    /// Iconifies the window. It is maximised first, deliberately: that brings it back from full
    /// screen.
    virtual void minimise() = 0;
    virtual bool hasFocus() const = 0;
    virtual void claimFocus() = 0;
    virtual bool isEnabled() const = 0;
    virtual void setEnabled(bool enabled) = 0;
    virtual void setTitle(const LightweightString<wchar_t>& title) = 0;
    /// An opaque identifier of this window; null before realize.
    virtual void* getID() const = 0;
    /// 32
    virtual int getBitsPerPixel() const = 0;

    /// A host image of a logical size, at the window's scale rounded up.
    virtual Tq::Ptr<iHostImage> createCompatibleImage(const XY<int>& size) const = 0;
    /// @param size pixels
    /// @param weight 100 to 900, 400 is normal; 0 takes it from the flags
    /// @param flags iFont::eStyle bits
    virtual Tq::Ptr<iFont> createFont(const LightweightString<wchar_t>& name, unsigned int size,
                                      unsigned int weight, unsigned int flags) const = 0;
    /// A timer whose ticks go to the handler that the window has now.
    virtual Tq::Ptr<iTimer> createTimer(unsigned int intervalMs) = 0;

    /// What to draw on the window with.
    ///
    /// Inside handlePaint it draws straight into the window. At any other time it records;
    /// releasing it queues the recording, and the next paint draws the queue, in order, instead of
    /// asking the handler: deliberate, queued drawing is that paint. Drawing adds to what is
    /// there; only where the window's contents were lost (its first paint, a new size) does another
    /// paint follow, which asks the handler. While the window cannot be seen, 4096 recordings wait;
    /// with the next one all are dropped, and the handler paints when the window comes back. A
    /// renderer kept after handlePaint draws nothing; a recording one must be released before the
    /// window goes. Null before realize.
    virtual Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool antialias) = 0;

    /// Sends the handler a user message through the event loop. From any thread.
    virtual void postUserMessage() = 0;
    /// Keeps a child widget alive until the next paint has been drawn; lets go of it then, or with
    /// the window.
    virtual void queueSubWindowForDeletion(Tq::Ptr<QWidget> window) = 0;

    /// Direct access to the window's pixels is not to be had: prints the assertion report for
    /// "false" at "OS/Mac/QtRootWindow line 280" and returns null.
    virtual Tq::Ptr<iPixelGuard> lock() = 0;
    /// Does nothing, deliberately: draw through getPrimitivesRenderer.
    virtual void requestRepaint(const Tq::Ptr<iRegion>& region) = 0;
    /// Does nothing, deliberately: see iStatusWindow.
    virtual void showProgress(float fraction) = 0;

    /// The full size of the monitor whose usable area holds a position, else of the first one; (0,
    /// 0) when there is none.
    virtual XY<int> getMonitorSize(const XY<int>& position) const = 0;
    /// Whether some monitor's usable area holds a position.
    virtual bool validDesktopPosition(const XY<int>& position) const = 0;
};
