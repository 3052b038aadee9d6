#include "OS/Mac/OpenGL/Widgets/VideoFrames.h"

#include "OS/Mac/OpenGL/Widgets/FrameScheduler.h"
#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <OS/Threads/iWaitable.h>

#include <algorithm>
#include <chrono>
#include <utility>

namespace {

constexpr std::size_t kMostQueued = 2;

double toMs(std::int64_t ns)
{
    return static_cast<double>(ns) / 1e6;
}

} // namespace

/// What the updater gets for a frame. Tickets may arrive out of order, frames are drawn in order: a
/// ticket brings every frame up to its own. One that is released unrun has its frame dropped.
class VideoFrames::Ticket final : public iExecutable
{
public:
    Ticket(VideoFrames& frames, std::uint64_t number) : frames_(&frames), number_(number) {}
    ~Ticket() override
    {
        if (!used_)
            frames_->drop(number_);
    }
    void execute() override
    {
        used_ = true;
        frames_->presentUpTo(number_);
    }

private:
    Tq::Ptr<VideoFrames> frames_;
    std::uint64_t number_;
    bool used_ = false;
};

VideoFrames::VideoFrames(GLRenderTarget& target) : target_(&target), state_(target.getState()) {}

Tq::Ptr<iVideoWindowBackBuffer> VideoFrames::makeBackBuffer(const ImageDescriptionEx* finalImage)
{
    const Tq::Ptr<GLBackBufferGuard> buffer(
        new GLBackBufferGuard(target_, state_, getMeasures().size, this));
    if (finalImage && finalImage->image_) {
        buffer->setFinalImage(*finalImage);
        buffer->getPrimitivesRenderer(true); // there is a batch now, for the image alone too
    }
    return buffer;
}

// -- The way of a frame

void VideoFrames::receive(Tq::Ptr<QtGLWidgetPrimitivesBatch> batch)
{
    const std::int64_t now = FrameScheduler::steadyNs();
    FramePacer::Slot slot{};
    std::uint64_t number = 0;
    {
        const std::lock_guard lock(guard_);
        if (!accepting_ || queued_.size() >= kMostQueued) {
            ++statistics_.dropped;
            return;
        }
        slot = pacer_.next(now);
        number = ++lastNumber_;
        queued_.push_back({number, std::move(batch), now, slot.late});
    }
    const Tq::Ptr<Ticket> ticket(new Ticket(*this, number));
    if (slot.dueNs > now)
        FrameScheduler::instance().queueAt(slot.dueNs, ticket);
    else
        QtGLWindowUpdater::instance().queue(ticket);
}

void VideoFrames::presentUpTo(std::uint64_t number)
{
    for (Frame frame; takeFirst(number, frame);) {
        const std::int64_t began = FrameScheduler::steadyNs();
        const bool shown = frame.batch->draw();
        const std::int64_t ended = FrameScheduler::steadyNs();
        frame.batch.reset();
        count(frame, shown, began, ended);
    }
}

bool VideoFrames::takeFirst(std::uint64_t upTo, Frame& frame)
{
    const std::lock_guard lock(guard_);
    if (queued_.empty() || queued_.front().number > upTo)
        return false;
    frame = std::move(queued_.front());
    queued_.pop_front();
    drawing_ = true;
    changed_.notify_all();
    return true;
}

void VideoFrames::count(const Frame& frame, bool shown, std::int64_t beganNs, std::int64_t endedNs)
{
    const std::lock_guard lock(guard_);
    drawing_ = false;
    changed_.notify_all();
    if (!shown) {
        ++statistics_.dropped;
        return;
    }
    const double at = toMs(endedNs);
    statistics_.intervalMs = statistics_.presented ? at - statistics_.presentedAtMs : 0.0;
    statistics_.presentedAtMs = at;
    statistics_.waitMs = toMs(beganNs - frame.releasedNs);
    statistics_.drawMs = toMs(endedNs - beganNs);
    ++statistics_.presented;
    statistics_.late += frame.late ? 1 : 0;
}

// The frame's ticket was lost: the updater's queue was emptied, or has ended.
void VideoFrames::drop(std::uint64_t number)
{
    Frame lost; // released after the lock
    const std::lock_guard lock(guard_);
    const auto found = std::find_if(queued_.begin(), queued_.end(),
                                    [number](const Frame& f) { return f.number == number; });
    if (found == queued_.end())
        return;
    lost = std::move(*found);
    queued_.erase(found);
    ++statistics_.dropped;
    changed_.notify_all();
}

// -- The window's wishes

void VideoFrames::setAccepting(bool accepting)
{
    std::deque<Frame> dropped;
    std::unique_lock lock(guard_);
    accepting_ = accepting && !closed_;
    if (!accepting_)
        dropped = dropAll(lock);
    lock.unlock();
}

void VideoFrames::close()
{
    std::deque<Frame> dropped;
    std::unique_lock lock(guard_);
    closed_ = true;
    accepting_ = false;
    dropped = dropAll(lock);
    lock.unlock();
}

std::deque<VideoFrames::Frame> VideoFrames::dropAll(std::unique_lock<std::mutex>& lock)
{
    std::deque<Frame> dropped;
    dropped.swap(queued_);
    statistics_.dropped += dropped.size();
    changed_.notify_all();
    changed_.wait(lock, [this] { return !drawing_; });
    return dropped;
}

bool VideoFrames::isClosed() const
{
    const std::lock_guard lock(guard_);
    return closed_;
}

bool VideoFrames::setRate(unsigned int numerator, unsigned int denominator)
{
    const std::lock_guard lock(guard_);
    return pacer_.setRate(numerator, denominator);
}

// -- Questions

unsigned int VideoFrames::getQueued() const
{
    const std::lock_guard lock(guard_);
    return static_cast<unsigned int>(queued_.size());
}

unsigned int VideoFrames::waitForRoom(unsigned int timeoutMs) const
{
    const auto decided = [this] { return closed_ || queued_.size() < kMostQueued; };
    std::unique_lock lock(guard_);
    if (timeoutMs == iWaitable::kNoTimeOut)
        changed_.wait(lock, decided);
    else if (!changed_.wait_for(lock, std::chrono::milliseconds(timeoutMs), decided))
        return iWaitable::eWaitTimedOut;
    return closed_ ? iWaitable::eWaitFailed : iWaitable::eWaitSignalled;
}

iVideoWindow::Statistics VideoFrames::getStatistics() const
{
    const std::lock_guard lock(guard_);
    return statistics_;
}

void VideoFrames::resetStatistics()
{
    const std::lock_guard lock(guard_);
    statistics_ = {};
}

RenderTargetState::Measures VideoFrames::getMeasures() const
{
    if (isClosed())
        return {{}, 0.0};
    return state_->getMeasures();
}
