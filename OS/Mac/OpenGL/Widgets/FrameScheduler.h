#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Threads/iExecutable.h>
#include <OS/Threads/iThread.h>

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>

/// Hands tasks to the updater at given times: a thread "VideoPacer", made when it is first needed,
/// that waits for the earliest of all and holds nothing meanwhile, so that no window's wait delays
/// another's frame.
///
/// One for the process, never destroyed. From any thread. The wait is a condition variable's, for
/// events wait in whole milliseconds from now, and would drift.
class FrameScheduler
{
public:
    static FrameScheduler& instance();
    FrameScheduler(const FrameScheduler&) = delete;
    FrameScheduler& operator=(const FrameScheduler&) = delete;

    /// Tasks for the same time keep their order.
    /// @param dueNs of steadyNs()
    void queueAt(std::int64_t dueNs, Tq::Ptr<iExecutable> task);
    /// Ends the thread and releases, unrun, what waits. A task queued afterwards starts it again.
    void shutdown();

    /// The clock of frames: CLOCK_MONOTONIC, nanoseconds.
    static std::int64_t steadyNs();

private:
    FrameScheduler() = default;
    static iThread::eExecRC run(void* scheduler);
    void handOverUntilTheEnd();
    void start();

    std::mutex guard_; // a leaf
    std::condition_variable changed_;
    std::multimap<std::int64_t, Tq::Ptr<iExecutable>> waiting_;
    Tq::Ptr<iThread> thread_;
    bool ending_ = false;
};
