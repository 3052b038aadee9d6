#include "OS/Mac/Threads/ThreadEvent.h"

#include "OS/Mac/Threads/ThreadEventSubscriber.h"
#include "OS/Mac/Threads/ThreadManager.h"

#include <OS/Core/Exception.h>

#include <cerrno>

using OSInternal::pthreadFailed;
using OSInternal::throwIfPthreadFailed;

namespace {

constexpr char kPlace[] = "OS/Mac/ThreadEvent";

bool failed(int line, int error)
{
    return pthreadFailed(kPlace, line, error);
}

} // namespace

ThreadEvent::ThreadEvent(bool manualReset, bool initialState, const char* /*name*/)
    : manualReset_(manualReset), signalled_(initialState)
{
    OSInternal::PthreadMutexAttributes attributes;
    throwIfPthreadFailed(kPlace, 94, attributes.initialise(), "pthread_mutexattr_init failed");
    throwIfPthreadFailed(kPlace, 95, attributes.setType(PTHREAD_MUTEX_ERRORCHECK),
                         "pthread_mutexattr_settype failed");
    throwIfPthreadFailed(kPlace, 97, listLock_.initialise(attributes),
                         "pthread_mutex_init failed.");
    throwIfPthreadFailed(kPlace, 98, stateLock_.initialise(attributes),
                         "pthread_mutex_init failed.");
    throwIfPthreadFailed(kPlace, 99, attributes.destroy(),
                         "pthread_mutexattr_destroy mtxAttr failed.");
}

ThreadEvent::~ThreadEvent()
{
    // Lets a set() that woke the last waiter leave the list first.
    const int lockError = listLock_.lock();
    failed(106, lockError);
    failed(107, listLock_.unlockAfter(lockError));
    failed(108, listLock_.destroy());
}

void ThreadEvent::addSubscriber(Subscriber* subscriber) const
{
    const int lockError = listLock_.lock();
    failed(116, lockError);
    if (subscribers_.full())
        throw Tq::Exception::RuntimeError("addSubscriber failed", kPlace,
                                          119); // the list stays locked
    subscribers_.push_back(subscriber);
    failed(121, listLock_.unlockAfter(lockError));
}

void ThreadEvent::removeSubscriber(Subscriber* subscriber) const
{
    const int lockError = listLock_.lock();
    failed(126, lockError);
    subscribers_.remove(subscriber);
    failed(130, listLock_.unlockAfter(lockError));
}

bool ThreadEvent::set()
{
    const int stateError = stateLock_.lock();
    failed(270, stateError);
    signalled_.store(true, std::memory_order_relaxed);
    failed(274, stateLock_.unlockAfter(stateError));

    const int listError = listLock_.lock();
    failed(276, listError);
    for (Subscriber* subscriber : subscribers_)
        if (!wake(*subscriber))
            break;
    failed(321, listLock_.unlockAfter(listError));
    return true;
}

// @return whether every step succeeded
bool ThreadEvent::wake(Subscriber& subscriber) const
{
    if (failed(288, subscriber.mutex_.lock()))
        return false;
    const bool woken = manualReset_ ? !failed(306, subscriber.condition_.broadcast())
                                    : !failed(307, subscriber.condition_.signal());
    const bool unlocked = !failed(316, subscriber.mutex_.unlock());
    return woken && unlocked;
}

void ThreadEvent::reset()
{
    const int stateError = stateLock_.lock();
    failed(328, stateError);
    signalled_.store(false, std::memory_order_relaxed);
    failed(330, stateLock_.unlockAfter(stateError));
}

unsigned int ThreadEvent::wait(unsigned int timeoutMs) const
{
    if (timeoutMs == 0)
        return poll();

    Subscriber subscriber;
    addSubscriber(&subscriber);
    const SafeSubscriber registration(&subscriber, this);
    if (timeoutMs == kNoTimeOut)
        return waitForEver(subscriber);
    timespec deadline;
    ThreadManager::MsecToTimespecAbs(deadline, timeoutMs);
    return waitUntil(subscriber, deadline);
}

unsigned int ThreadEvent::poll() const
{
    if (failed(138, stateLock_.lock()))
        return eWaitFailed;
    if (isSignalled()) {
        consume();
        return failed(145, stateLock_.unlock()) ? eWaitFailed : eWaitSignalled;
    }
    return failed(151, stateLock_.unlock()) ? eWaitFailed : eWaitTimedOut;
}

// Lines 171 to 185 are our own; the published sequence gives none there.
unsigned int ThreadEvent::waitForEver(Subscriber& subscriber) const
{
    if (failed(166, stateLock_.lock()))
        return eWaitFailed;
    while (!isSignalled()) {
        if (failed(171, subscriber.mutex_.lock())) {
            failed(172, stateLock_.unlock());
            return eWaitFailed;
        }
        failed(175, stateLock_.unlock());
        const int rc = subscriber.condition_.wait(subscriber.mutex_);
        const bool relocked = !failed(178, rc) && !failed(179, stateLock_.lock());
        failed(181, subscriber.mutex_.unlock());
        if (!relocked)
            return eWaitFailed;
    }
    consume();
    failed(185, stateLock_.unlock());
    return eWaitSignalled;
}

unsigned int ThreadEvent::waitUntil(Subscriber& subscriber, const timespec& deadline) const
{
    if (failed(201, stateLock_.lock()))
        return eWaitFailed;
    bool waited = false; // and so the subscriber's mutex is still held
    while (!isSignalled()) {
        // Woken for nothing: the mutex would refuse to be locked again, and that fails the wait,
        // deliberately.
        const int lockRc = waited ? EDEADLK : subscriber.mutex_.lock();
        if (failed(212, lockRc)) {
            stateLock_.unlock();
            if (waited)
                subscriber.mutex_.unlock();
            return eWaitFailed;
        }
        if (failed(217, stateLock_.unlock())) {
            subscriber.mutex_.unlock();
            return eWaitFailed;
        }
        const int rc = subscriber.condition_.waitUntil(subscriber.mutex_, deadline);
        if (rc != 0) {
            failed(224, subscriber.mutex_.unlock());
            if (rc == ETIMEDOUT)
                return eWaitTimedOut;
            failed(232, rc);
            return eWaitFailed;
        }
        waited = true;
        if (failed(239, stateLock_.lock())) { // a line of our own
            subscriber.mutex_.unlock();
            return eWaitFailed;
        }
    }
    return finishTimedWait(subscriber, waited);
}

unsigned int ThreadEvent::finishTimedWait(Subscriber& subscriber, bool waited) const
{
    consume();
    const int stateRc = stateLock_.unlock();
    failed(259, stateRc);
    const int subscriberRc = waited ? subscriber.mutex_.unlock() : 0;
    failed(260, subscriberRc);
    return failed(261, stateRc != 0 ? stateRc : subscriberRc) ? eWaitFailed : eWaitSignalled;
}
