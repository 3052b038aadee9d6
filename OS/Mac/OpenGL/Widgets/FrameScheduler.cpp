#include "OS/Mac/OpenGL/Widgets/FrameScheduler.h"

#include "OS/Mac/OpenGL/Widgets/QtGLWindowUpdater.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>
#include <OS/Threads/iWaitable.h>

#include <chrono>
#include <utility>

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

FrameScheduler& FrameScheduler::instance()
{
    static auto* const scheduler = new FrameScheduler;
    return *scheduler;
}

std::int64_t FrameScheduler::steadyNs()
{
    return std::chrono::duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

void FrameScheduler::queueAt(std::int64_t dueNs, Tq::Ptr<iExecutable> task)
{
    const std::lock_guard lock(guard_);
    const auto place = waiting_.emplace(dueNs, std::move(task));
    if (!thread_)
        start();
    else if (place == waiting_.begin())
        changed_.notify_one();
}

void FrameScheduler::start()
{
    iThread::InitArgs args;
    args.func_ = &FrameScheduler::run;
    args.arg_ = this;
    args.name_ = "VideoPacer";
    thread_ = OS()->threadMgr()->createThread(args);
}

iThread::eExecRC FrameScheduler::run(void* scheduler)
{
    static_cast<FrameScheduler*>(scheduler)->handOverUntilTheEnd();
    return iThread::eExecSucceeded;
}

void FrameScheduler::handOverUntilTheEnd()
{
    std::unique_lock lock(guard_);
    while (!ending_) {
        if (waiting_.empty()) {
            changed_.wait(lock);
            continue;
        }
        const auto first = waiting_.begin();
        if (first->first > steadyNs()) {
            changed_.wait_until(lock, steady_clock::time_point(nanoseconds(first->first)));
            continue;
        }
        Tq::Ptr<iExecutable> due = std::move(first->second);
        waiting_.erase(first);
        lock.unlock();
        QtGLWindowUpdater::instance().queue(std::move(due));
        lock.lock();
    }
}

void FrameScheduler::shutdown()
{
    Tq::Ptr<iThread> ended;
    {
        const std::lock_guard lock(guard_);
        ended = thread_;
        ending_ = ended != nullptr;
        changed_.notify_one();
    }
    if (ended)
        ended->waitForCompletion(iWaitable::kNoTimeOut);
    std::multimap<std::int64_t, Tq::Ptr<iExecutable>> released;
    const std::lock_guard lock(guard_);
    thread_.reset();
    ending_ = false;
    released.swap(waiting_);
}
