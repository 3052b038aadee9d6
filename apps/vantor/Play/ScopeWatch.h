#pragma once

#include "Compute/ScopeMeter.h"
#include "Effects/LiveEffect.h"
#include "common/Resources.h"

#include <OS/Threads/iCriticalSection.h>
#include <OS/Threads/iSemaphore.h>
#include <OS/Threads/iThread.h>

#include <atomic>

namespace Vantor {

/// Measures what the viewer shows, as often as it pays to look: always the newest picture, on a
/// thread of its own ("Scopes"). Operations may be called from any thread and do not wait.
class ScopeWatch
{
public:
    ScopeWatch();
    ~ScopeWatch();
    ScopeWatch(const ScopeWatch&) = delete;
    ScopeWatch& operator=(const ScopeWatch&) = delete;

    /// A picture to be measured, in the place of one that nobody has looked at yet.
    /// @param effect that it is shown through; null: as it is
    void offer(const Tq::Ptr<iGPUImage>& image, const LiveEffect::Path& effect);
    ScopeReading reading() const;
    /// Whether everything offered has been measured, or cannot be.
    bool isUpToDate() const;

private:
    struct Shown
    {
        Tq::Ptr<iGPUImage> image;
        LiveEffect::Path effect;
    };
    static iThread::eExecRC run(void* watch);
    void loop();
    Tq::Ptr<iGPUImage> small(const Shown& shown);
    void rest();
    void keep(const ScopeReading& reading);

    const Tq::Ptr<iCriticalSection> lock_;
    const Tq::Ptr<iSemaphore> wake_; ///< there is a picture, or the end
    const Tq::Ptr<iSemaphore> end_;
    std::atomic<bool> ends_{false};
    Shown newest_; ///< under lock_, and so the next two
    ScopeReading reading_;
    bool busy_ = false;

    // On the thread only.
    App::Resources resources_{1.0};
    std::unique_ptr<ScopeMeter> meter_;
    Tq::Ptr<iGPUImage> small_;

    Tq::Ptr<iThread> thread_;
};

} // namespace Vantor
