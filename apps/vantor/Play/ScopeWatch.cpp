#include "Play/ScopeWatch.h"

#include "common/Canvas.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>

namespace Vantor {

namespace {

constexpr unsigned int kRestMs = 60; ///< between two looks
constexpr int kWidth = 480;          ///< pixels of what is measured, at most

} // namespace

ScopeWatch::ScopeWatch()
    : lock_(OS()->threadMgr()->createCriticalSection(0)),
      wake_(OS()->threadMgr()->createSemaphore(0, 0)),
      end_(OS()->threadMgr()->createSemaphore(0, 0))
{
    iThread::InitArgs args;
    args.func_ = run;
    args.arg_ = this;
    args.name_ = "Scopes";
    thread_ = OS()->threadMgr()->createThread(args);
}

ScopeWatch::~ScopeWatch()
{
    ends_ = true;
    end_->release();
    wake_->release();
    thread_->waitForCompletion(iWaitable::kNoTimeOut);
}

void ScopeWatch::offer(const Tq::Ptr<iGPUImage>& image, const LiveEffect::Path& effect)
{
    Shown before; // let go outside of the lock
    {
        const CriticalSectionLock held(lock_);
        before = std::move(newest_);
        newest_ = {image, effect};
    }
    wake_->release();
}

ScopeReading ScopeWatch::reading() const
{
    const CriticalSectionLock held(lock_);
    return reading_;
}

bool ScopeWatch::isUpToDate() const
{
    const CriticalSectionLock held(lock_);
    return !busy_ && !newest_.image;
}

void ScopeWatch::rest()
{
    const CriticalSectionLock held(lock_);
    busy_ = false;
}

void ScopeWatch::keep(const ScopeReading& reading)
{
    const CriticalSectionLock held(lock_);
    reading_ = reading;
}

iThread::eExecRC ScopeWatch::run(void* watch)
{
    static_cast<ScopeWatch*>(watch)->loop();
    return iThread::eExecSucceeded;
}

void ScopeWatch::loop()
{
    bool tried = false;
    while (!ends_) {
        wake_->wait(iWaitable::kNoTimeOut);
        Shown shown;
        {
            const CriticalSectionLock held(lock_);
            shown = std::move(newest_);
            newest_ = {};
            busy_ = bool(shown.image);
        }
        if (ends_ || !shown.image)
            continue;
        if (!tried) {
            tried = true;
            ScopeReading first;
            meter_ = ScopeMeter::make(first.trouble);
            keep(first);
        }
        if (meter_)
            if (const auto counts = meter_->measure(small(shown)))
                keep({counts, Text()});
        rest();
        if (!meter_)
            continue;
        // Scopes need not be as quick as the picture.
        if (end_->wait(kRestMs) == iWaitable::eWaitSignalled)
            break;
    }
    small_.reset();
    meter_.reset();
}

// As it is shown, in fewer pixels.
Tq::Ptr<iGPUImage> ScopeWatch::small(const Shown& shown)
{
    const Point size = shown.image->getSize();
    const int width = std::min(size.x, kWidth);
    const Point wanted{width, std::max(1, size.y * width / std::max(1, size.x))};
    if (!small_ || !(small_->getSize() == wanted))
        small_ = OS()->mediaServices()->createGPUSurface(wanted, iGPUImage::eARGB8);
    if (!small_)
        return nullptr;
    App::Canvas canvas(resources_, small_->getPrimitivesRenderer(true));
    const App::Rect all{0, 0, wanted.x, wanted.y};
    if (shown.effect && shown.effect->technique.effect_)
        canvas.passed(shown.image, size, all, shown.effect->technique);
    else
        canvas.stretched(shown.image, size, all, false);
    return small_;
}

} // namespace Vantor
