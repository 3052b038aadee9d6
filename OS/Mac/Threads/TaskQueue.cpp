#include <OS/Threads/TaskQueue.h>

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Threads/LockRank.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <QThread>

#include <utility>

using OSInternal::LockRank;

namespace {

constexpr unsigned int kStartPollMs = 5;
constexpr std::size_t kKeptItems =
    65'536; // 1 MiB of pointers; a larger burst's memory is given back

Tq::Ptr<iCriticalSection> makeLock(LockRank rank)
{
    auto lock = OS()->threadMgr()->createCriticalSection(0);
    OSInternal::setLockRank(*lock, rank);
    return lock;
}

} // namespace

TaskQueue::TaskQueue(const LightweightString<char>& threadName)
{
    // The toolkit takes the first thread that asks for the application's main one: never our
    // worker.
    QThread::currentThread();

    wakeUp_ = OS()->threadMgr()->createEvent(false, false, nullptr);
    queueLock_ = makeLock(LockRank::eQueue);
    executionLock_ = makeLock(LockRank::eExecution);

    iThread::InitArgs args;
    args.func_ = &TaskQueue::threadStarter;
    args.arg_ = this;
    args.name_ = threadName;
    args.priority_ = iThread::ePriorityIdle;
    worker_ = OS()->threadMgr()->createThread(args);
}

TaskQueue::~TaskQueue()
{
    shutdown();
}

void TaskQueue::queue(Tq::Ptr<iExecutable> item)
{
    if (!item) {
        OSInternal::reportAssertion("item != NULL", "OS/Mac/TaskQueue line 52");
        return;
    }
    queueLock_->lock();
    pending_.push_back(std::move(item));
    const bool wake = std::exchange(workerIdle_, false);
    queueLock_->unlock();
    // A busy worker looks at the list again before it rests; one signal serves all that come until
    // then.
    if (wake)
        wakeUp_->set();
}

void TaskQueue::clear()
{
    Items dropped;
    {
        const CriticalSectionLock lock(queueLock_);
        dropped.swap(pending_);
    }
    // Not under the queue lock: an item of the running batch may be about to queue another.
    const CriticalSectionLock finished(executionLock_);
}

void TaskQueue::shutdown()
{
    if (!worker_)
        return;
    running_.store(false, std::memory_order_relaxed);
    wakeUp_->set();
    worker_->waitForCompletion(iWaitable::kNoTimeOut);
    worker_.reset();
    wakeUp_.reset();
    queueLock_.reset();
    executionLock_.reset();
}

QThread* TaskQueue::getQThread() const
{
    QThread* thread;
    while (!(thread = workerQThread_.load(std::memory_order_acquire)))
        OS()->threadMgr()->sleep(kStartPollMs);
    return thread;
}

iThread::eExecRC TaskQueue::threadStarter(void* queue)
{
    static_cast<TaskQueue*>(queue)->threadFn();
    return static_cast<iThread::eExecRC>(0);
}

void TaskQueue::threadFn()
{
    workerQThread_.store(QThread::currentThread(), std::memory_order_release);
    Items batch; // its memory goes back and forth with pending_
    do {
        wakeUp_->wait(iWaitable::kNoTimeOut);
        while (running_.load(std::memory_order_relaxed) && runBatch(batch)) {
            batch.clear();
            if (batch.capacity() > kKeptItems)
                batch = Items();
        }
    } while (running_.load(std::memory_order_relaxed));
}

// @return whether there was anything to run; if not, the next item has to wake the worker
bool TaskQueue::runBatch(Items& batch)
{
    // First the execution lock, then the list: whoever has cleared the list and waits for the
    // execution lock then knows that nothing of it is on its way.
    const CriticalSectionLock executing(executionLock_);
    {
        const CriticalSectionLock lock(queueLock_);
        batch.swap(pending_);
        workerIdle_ = batch.empty();
    }
    for (const auto& item : batch)
        item->execute();
    return !batch.empty();
}
