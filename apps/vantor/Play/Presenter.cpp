#include "Play/Presenter.h"

#include "Drawing/Overlays.h"
#include "Play/FrameMaker.h"
#include "View/ViewerGeometry.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Vantor {

namespace {

constexpr int kWorkers = 2;
constexpr std::size_t kFrames = 8; ///< ready and being made
constexpr double kBusyMs = 1.0;    ///< until a window that is behind is asked again
constexpr double kLookMs = 100.0;  ///< between looks at a window whose picture stands still
constexpr double kFirstRetryMs = 20.0;
constexpr double kLastRetryMs = 640.0;

/// Pixels of the frame for a place on the screen: as fine as the screen, and no finer than the
/// sequence.
Point pixelsFor(const Rect& picture, double ratio)
{
    const Point fine{static_cast<int>(std::lround(picture.width() * ratio)),
                     static_cast<int>(std::lround(picture.height() * ratio))};
    return fine.x > kSequenceSize.x || fine.y > kSequenceSize.y ? kSequenceSize : fine;
}

Rect placeIn(const Point& size, const Showing& showing, double ratio)
{
    const Rect screen{0, 0, size.x, size.y};
    if (!showing.alone)
        return placePicture(screen, {12, 4, size.x - 12, size.y}, ratio, showing.choices);
    return placePicture(screen, screen, ratio, ViewerChoices());
}

/// Each worker has a maker of its own.
FrameReader::Make makeDrawn()
{
    auto makers = std::make_shared<std::vector<std::unique_ptr<FrameMaker>>>();
    for (int i = 0; i < kWorkers; ++i)
        makers->push_back(std::make_unique<FrameMaker>());
    return [makers](int worker, const FrameRequest& request, int frame) {
        return (*makers)[static_cast<std::size_t>(worker)]->make(request, frame);
    };
}

} // namespace

struct Presenter::Shown
{
    std::uint64_t changes = 0;
    std::uint64_t run = 0;
    std::int64_t tick = -1;
    Point windowSize;
    bool sharp = false; ///< with the frame that was meant
    Tq::Ptr<iImage> image;
    Tq::Ptr<iImage> graded; ///< of gradedFrom by gradedBy
    Tq::Ptr<iImage> gradedFrom;
    LiveEffect::Path gradedBy;
    Point pixels;
    const iVideoWindow* window = nullptr;
    std::uint64_t released = 0; ///< frames, in this window
    std::uint64_t lost = 0;     ///< of them, as far as has been looked at
    double retryMs = kFirstRetryMs;
};

Presenter::Presenter(FrameReader::Make make)
    : lock_(OS()->threadMgr()->createCriticalSection(0)),
      wake_(OS()->threadMgr()->createSemaphore(0, 0)), shown_(new Shown)
{
    reader_ = std::make_unique<FrameReader>(kWorkers, kFrames, make ? std::move(make) : makeDrawn(),
                                            [this] { wake_->release(); });
    iThread::InitArgs args;
    args.func_ = run;
    args.arg_ = this;
    args.name_ = "Viewer";
    thread_ = OS()->threadMgr()->createThread(args);
}

Presenter::~Presenter()
{
    ends_ = true;
    wake_->release();
    thread_->waitForCompletion(iWaitable::kNoTimeOut);
    reader_.reset();
}

void Presenter::show(const Showing& showing)
{
    {
        const CriticalSectionLock held(lock_);
        if (showing.looksLike(showing_))
            return;
        if (showing_.window && showing.window.get() != showing_.window.get()) {
            const iVideoWindow::Statistics before = showing_.window->getStatistics();
            presentedBefore_ += before.presented;
            droppedBefore_ += before.dropped;
            if (showing.window)
                showing.window->resetStatistics();
        }
        showing_ = showing;
        ++changes_;
    }
    wake_->release();
}

Presenter::Facts Presenter::facts() const
{
    const CriticalSectionLock held(lock_);
    iVideoWindow::Statistics now;
    if (showing_.window)
        now = showing_.window->getStatistics();
    const std::uint64_t dropped = droppedBefore_ + now.dropped + count_.dropped();
    return {presentedBefore_ + now.presented, dropped - std::min(dropped, lostStanding_),
            count_.rate(), settledChanges_ == changes_};
}

iThread::eExecRC Presenter::run(void* presenter)
{
    static_cast<Presenter*>(presenter)->loop();
    return iThread::eExecSucceeded;
}

void Presenter::loop()
{
    while (!ends_) {
        Showing showing;
        std::uint64_t changes = 0;
        {
            const CriticalSectionLock held(lock_);
            showing = showing_;
            changes = changes_;
        }
        if (changes != shown_->changes)
            shown_->tick = -1;
        shown_->changes = changes;
        const double wait = present(showing);
        if (ends_)
            break;
        wake_->wait(std::isfinite(wait) ? static_cast<unsigned int>(std::max(1.0, std::floor(wait)))
                                        : iWaitable::kNoTimeOut);
        // One look sees everything that is new.
        while (wake_->wait(0) == iWaitable::eWaitSignalled)
            continue;
    }
    *shown_ = Shown();
    grade_.reset();
}

// @return how long there is nothing to do
double Presenter::present(const Showing& showing)
{
    if (!showing.window || showing.window->isClosed() || !showing.edit)
        return std::numeric_limits<double>::infinity();
    if (shown_->window != showing.window.get()) {
        const std::uint64_t changes = shown_->changes;
        *shown_ = Shown();
        shown_->changes = changes;
        shown_->window = showing.window.get();
    }
    const Point size = showing.window->getSize();
    const double ratio = showing.window->getPixelRatio();
    if (size.x <= 0 || size.y <= 0 || !(ratio > 0.0))
        return kLookMs;
    const Transport& transport = showing.transport;
    const double now = transport.now();
    const Point pixels = pixelsFor(placeIn(size, showing, ratio), ratio);
    reader_->want({showing.edit, transport.rate(), pixels},
                  transport.ahead(now, static_cast<int>(kFrames)));

    const std::int64_t tick = transport.ticksAt(now);
    const bool done = shown_->sharp && shown_->tick == tick && shown_->run == transport.run() &&
                      shown_->windowSize == size && shown_->pixels == pixels;
    const double wait = std::min(transport.nextChange(now) - now, kLookMs);
    if (done)
        return transport.playing() ? wait : settle(showing);
    const int frame = transport.frameAt(now);
    const bool ready = reader_->has(frame);
    const bool changed = shown_->tick < 0 || !(shown_->windowSize == size);
    // Until the new frame is there, the last one takes its new place.
    if (!ready && (!changed || !shown_->image))
        return wait;
    if (showing.window->getQueuedFrames() > 0)
        return std::min(wait, kBusyMs);
    if (ready) {
        shown_->image = reader_->find(frame);
        shown_->pixels = pixels;
    }
    if (draw(showing, shown_->image, shown_->pixels, frame))
        ++shown_->released;
    shown_->sharp = ready;
    shown_->tick = tick;
    shown_->run = transport.run();
    shown_->windowSize = size;
    if (ready)
        count(showing, tick, now);
    return transport.playing() ? transport.nextChange(now) - transport.now() : kBusyMs;
}

// A window that is not on the screen yet, or not any more, loses what it is given. What stands
// still is given again until it is seen, less and less often.
double Presenter::settle(const Showing& showing)
{
    const iVideoWindow::Statistics now = showing.window->getStatistics();
    if (now.presented + now.dropped < shown_->released)
        return kBusyMs;
    const bool isLost = now.dropped > shown_->lost;
    const CriticalSectionLock held(lock_);
    if (!isLost) {
        shown_->retryMs = kFirstRetryMs;
        settledChanges_ = shown_->changes;
        return kLookMs;
    }
    lostStanding_ += now.dropped - shown_->lost;
    shown_->lost = now.dropped;
    shown_->tick = -1;
    const double wait = shown_->retryMs;
    shown_->retryMs = std::min(2.0 * wait, kLastRetryMs);
    return wait;
}

// A frame is graded once, however often it is drawn.
Tq::Ptr<iImage> Presenter::graded(const Tq::Ptr<iImage>& image, const LiveEffect::Path& path)
{
    if (!image || !path || !path->grade)
        return image;
    if (shown_->gradedFrom.get() == image.get() && shown_->gradedBy == path)
        return shown_->graded;
    if (!gradeTried_) {
        gradeTried_ = true;
        grade_ = Grade::make();
    }
    const Tq::Ptr<iGPUImage> source = image.dynamicCast<iGPUImage>();
    const Tq::Ptr<iGPUImage> result =
        grade_ && source ? grade_->apply(source, *path->grade) : nullptr;
    shown_->gradedFrom = image;
    shown_->gradedBy = path;
    shown_->graded = result ? Tq::Ptr<iImage>(result) : image;
    return shown_->graded;
}

bool Presenter::draw(const Showing& showing, const Tq::Ptr<iImage>& frameImage, const Point& pixels,
                     int frame)
{
    const Tq::Ptr<iImage> image = graded(frameImage, showing.effect);
    const Tq::Ptr<iVideoWindowBackBuffer> buffer = showing.window->getBackBuffer();
    const Tq::Ptr<iGraphicPrimitivesRenderer> renderer =
        buffer ? buffer->getPrimitivesRenderer(true) : nullptr;
    if (!renderer)
        return false;
    const Point size = buffer->getSize();
    const double ratio = showing.window->getPixelRatio();
    const Rect picture = placeIn(size, showing, ratio);
    Canvas canvas(resources_, renderer);
    canvas.fill({0, 0, size.x, size.y}, showing.alone ? Theme::kBlack : Theme::kPanel);
    if (image && showing.effect && showing.effect->technique.effect_)
        canvas.passed(image, pixels, picture, showing.effect->technique);
    else if (image)
        canvas.stretched(image, pixels, picture, false);
    else
        canvas.fill(picture, Theme::kBlack);
    drawOverlays(canvas, picture, {0, 0, size.x, size.y}, showing.choices, frame,
                 showing.transport.rate(), [&](const Text& words, const Rect& plate, int height) {
                     digits_.write(canvas, words, plate, height, ratio);
                 });
    if (showing.measured)
        scopes_.offer(image.dynamicCast<iGPUImage>(), showing.effect);
    return true;
}

void Presenter::count(const Showing& showing, std::int64_t tick, double ms)
{
    const CriticalSectionLock held(lock_);
    count_.show(showing.transport.run(), tick, ms, showing.transport.playing());
}

} // namespace Vantor
