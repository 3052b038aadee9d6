#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Threads/iCriticalSection.h>
#include <OS/Threads/iExecutable.h>
#include <OS/Threads/iThread.h>
#include <OS/Threads/iThreadEvent.h>

#include <atomic>
#include <vector>

class QThread;

/// Runs work items on one worker thread of its own, in the order in which they were queued.
///
/// Do not use it to run things side by side: make several queues. Items are taken in batches: all
/// that is waiting is taken at once and run under the execution lock.
///
/// Shared through Tq::Ptr. Never release the last reference from an item. The queue must not be
/// used after shutdown(), deliberately without a check.
class OS_API TaskQueue : public iObject
{
public:
    /// Starts the worker.
    ///
    /// @param threadName the worker's name
    explicit TaskQueue(const LightweightString<char>& threadName);
    /// Calls shutdown() and releases, unrun, what is still waiting.
    ~TaskQueue() override;
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;

    /// Appends an item and wakes the worker. Any thread, also from an item, which then runs in the
    /// next batch. Takes the queue lock.
    ///
    /// @param item a null one prints an assertion and is left out
    void queue(Tq::Ptr<iExecutable> item);

    /// Drops every item that the worker has not taken, and returns when the batch that is running
    /// has finished. Items queued meanwhile by other threads may be dropped or run. Any thread;
    /// from an item it does not wait. Takes the queue lock, then the execution lock, never both: do
    /// not hold a lock that an item takes.
    void clear();

    /// Stops the worker after its current batch and waits for its end. What is still waiting is
    /// never run; it is released with the queue. A second call does nothing. Not from an item.
    void shutdown();

    /// The worker's toolkit thread; waits for the worker to start. It goes with the worker's end.
    QThread* getQThread() const;

    /// The worker's body. @param queue the TaskQueue @return 0
    static iThread::eExecRC threadStarter(void* queue);

private:
    using Items = std::vector<Tq::Ptr<iExecutable>>;

    void threadFn();
    bool runBatch(Items& batch);

    Tq::Ptr<iCriticalSection> queueLock_;
    Tq::Ptr<iCriticalSection> executionLock_;
    Tq::Ptr<iThread> worker_;
    Tq::Ptr<iThreadEvent> wakeUp_; // set when an item comes to an idle worker
    Items pending_;                // under queueLock_
    bool workerIdle_ = true;       // under queueLock_: found nothing to run, and waits or will
    std::atomic<QThread*> workerQThread_{nullptr};
    std::atomic<bool> running_{true};
};
