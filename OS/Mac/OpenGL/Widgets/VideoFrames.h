#pragma once

#include "OS/Mac/OpenGL/Widgets/FramePacer.h"
#include "OS/Mac/OpenGL/Widgets/GLBackBufferGuard.h"
#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"

#include <OS/Windowing/iVideoWindow.h>

#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>

/// The frames of one video window, between their release and the screen: at most two are queued,
/// each is drawn at its time, and every one is counted.
///
/// Shared by the window, its back buffers and the tasks on their way. From any thread; the lock is
/// a leaf, never held while something is drawn.
class VideoFrames final : public FrameReceiver
{
public:
    /// @param target drawn into while it lives; not owned
    explicit VideoFrames(GLRenderTarget& target);
    VideoFrames(const VideoFrames&) = delete;
    VideoFrames& operator=(const VideoFrames&) = delete;

    /// @param finalImage null for none
    Tq::Ptr<iVideoWindowBackBuffer> makeBackBuffer(const ImageDescriptionEx* finalImage);
    void receive(Tq::Ptr<QtGLWidgetPrimitivesBatch> frame) override;

    bool setRate(unsigned int numerator, unsigned int denominator);
    unsigned int getQueued() const;
    unsigned int waitForRoom(unsigned int timeoutMs) const;
    iVideoWindow::Statistics getStatistics() const;
    void resetStatistics();
    /// All 0 when closed.
    RenderTargetState::Measures getMeasures() const;

    /// Drops what is queued, and each frame that comes while it is off; waits for the frame that is
    /// being drawn. Not with the GL lock.
    void setAccepting(bool accepting);
    /// setAccepting(false), for good.
    void close();
    bool isClosed() const;

private:
    class Ticket;
    struct Frame
    {
        std::uint64_t number = 0;
        Tq::Ptr<QtGLWidgetPrimitivesBatch> batch;
        std::int64_t releasedNs = 0;
        bool late = false;
    };

    void presentUpTo(std::uint64_t number);
    bool takeFirst(std::uint64_t upTo, Frame& frame);
    void count(const Frame& frame, bool shown, std::int64_t beganNs, std::int64_t endedNs);
    void drop(std::uint64_t number);
    std::deque<Frame> dropAll(std::unique_lock<std::mutex>& lock);

    GLRenderTarget* const target_;
    const Tq::Ptr<RenderTargetState> state_;

    mutable std::mutex guard_;
    mutable std::condition_variable changed_; // room, or nothing is being drawn
    std::deque<Frame> queued_;
    std::uint64_t lastNumber_ = 0;
    bool accepting_ = true;
    bool closed_ = false;
    bool drawing_ = false;
    FramePacer pacer_;
    iVideoWindow::Statistics statistics_;
};
