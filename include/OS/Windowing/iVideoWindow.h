#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/OpenGL/iVideoWindowBackBuffer.h>
#include <OS/Primitives/ImageDescriptionEx.h>
#include <OS/Primitives/XY.h>

#include <cstdint>

class iRootWindow;

/// A window that shows video: a rectangle of a root window (iWindowManager::createVideoWindow), or
/// a whole monitor (createVideoWindowFullscreen).
///
/// A frame is a back buffer: ask for one, draw on it, release it. It is drawn by GL on a thread of
/// the library's and shown as a whole, at its time when the window has a frame rate. Nobody waits
/// for it: at most two frames of a window are queued, and the third is dropped and counted.
///
/// Threads: what is said to be for frames may be called from any thread; everything else, the
/// release of the window included, belongs to the thread of the event loop. It never waits for
/// frames that are not yet due, so the window may be hidden, moved, resized, moved to another root
/// window, closed and released at any moment, while frames are in flight. (Released on another
/// thread, the window goes with the event loop's next turn.)
///
/// Sizes and positions are logical pixels. Keys, the mouse and the wheel go to the root window,
/// with its own positions, as if the video window were not there.
class OS_API iVideoWindow : public virtual iObject
{
public:
    /// What became of the frames, counted from the window's making or resetStatistics(). Every
    /// released back buffer that was drawn on ends in exactly one of presented and dropped.
    struct Statistics
    {
        std::uint64_t presented = 0; ///< drawn and shown
        std::uint64_t dropped = 0;   ///< not shown: two were queued, or the window was hidden,
                                     ///< closed or could not be drawn into
        std::uint64_t late = 0;      ///< of the presented: released after their time
        /// Of the frame presented last; all 0 before the first.
        double presentedAtMs = 0.0; ///< when it was shown, on the steady clock (CLOCK_MONOTONIC)
        double intervalMs = 0.0;    ///< since the one before it was shown; 0 for the first
        double waitMs = 0.0;        ///< from its release to the beginning of its drawing
        double drawMs = 0.0;        ///< from the beginning of its drawing until it was shown
    };

    ~iVideoWindow() override = default;

    // -- Frames: from any thread

    /// What to draw the next frame on. Its size is the window's size now. It may be kept for any
    /// time and released on any thread; one that was drawn on, or that has a final image, becomes
    /// a queued frame then, in the order of release. The frame keeps the images and fonts drawn.
    ///
    /// @param finalImage drawn over everything else, through its technique: colour conversion,
    ///                   aspect, field order and zoom are the caller's; null for none. Its
    ///                   destRect_ is in pixels of the window. Copied
    /// @return never null; of a closed window, one whose frame is dropped
    virtual Tq::Ptr<iVideoWindowBackBuffer> getBackBuffer(const ImageDescriptionEx* finalImage) = 0;

    /// Shows frames at times that lie `denominator / numerator` seconds apart, on a grid that
    /// begins with the next frame and does not drift: 30000, 1001 for 29.97 a second. A frame
    /// released early waits for its time without holding up any other window; one that is late is
    /// shown at once, and the grid stays. Frames already queued keep their times.
    ///
    /// @param numerator 0 shows each frame as soon as it is drawn (the default)
    /// @return false, and nothing changes, for a denominator of 0 or more than 1000 frames a second
    virtual bool setFrameRate(unsigned int numerator, unsigned int denominator) = 0;

    /// How many frames wait to be drawn: 0, 1 or 2. The one being drawn is not counted.
    virtual unsigned int getQueuedFrames() const = 0;
    /// Blocks until fewer than two frames are queued: for a player's own thread, never for the
    /// thread of the event loop, which others may be waiting for.
    ///
    /// @param timeoutMs milliseconds; 0 asks once, iWaitable::kNoTimeOut waits without limit
    /// @return iWaitable::eWaitSignalled: there is room; eWaitTimedOut; eWaitFailed: the window is
    ///         closed
    virtual unsigned int waitForRoom(unsigned int timeoutMs) const = 0;
    virtual Statistics getStatistics() const = 0;
    virtual void resetStatistics() = 0;

    /// (0, 0) when the window is closed.
    virtual XY<int> getSize() const = 0;
    /// Device pixels for each logical pixel, a fraction too; 0 when the window is closed.
    virtual double getPixelRatio() const = 0;

    // -- The window: on the thread of the event loop

    /// Of the top left corner, in the root window; of a full-screen window, on the desktop.
    virtual XY<int> getPosition() const = 0;
    /// Moves and resizes. What was shown last is shown again, at its old place in the window, until
    /// the next frame comes. Does nothing for a full-screen or closed window.
    /// @param size 1 x 1 at least; smaller values are taken as 1
    virtual void setGeometry(const XY<int>& position, const XY<int>& size) = 0;
    virtual bool isVisible() const = 0;
    /// Shows the window, with the frame that was shown last where there was one. A window is
    /// visible when it is made.
    virtual void show() = 0;
    /// Hides the window. Queued frames are dropped, and so is each that is released until show().
    virtual void hide() = 0;
    /// Moves the window into another root window, where it keeps its position, size and visibility.
    /// @return false, and nothing changes, for a root window that is not realised, a full-screen
    ///         window or a closed one
    virtual bool setRootWindow(const Tq::Ptr<iRootWindow>& root) = 0;

    virtual bool isFullscreen() const = 0;
    /// Chooses the monitor of a full-screen window: the first one that holds a position of the
    /// desktop. A new window is on the monitor that holds the middle of the root window, else on
    /// the first.
    /// @return false, and nothing changes, where no monitor holds the position, or the window is
    ///         not full screen or closed
    virtual bool setMonitor(const XY<int>& desktopPosition) = 0;

    /// Takes the window off the screen for good; queued frames are dropped. A root window that goes
    /// closes the video windows in it, and iWindowManager::shutdown() closes all. A second call
    /// does nothing.
    virtual void close() = 0;
    virtual bool isClosed() const = 0; ///< from any thread

    /// A back buffer without a final image.
    Tq::Ptr<iVideoWindowBackBuffer> getBackBuffer() { return getBackBuffer(nullptr); }
};
