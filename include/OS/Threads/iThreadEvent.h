#pragma once

#include <OS/Threads/iWaitable.h>

/// An event: a state that one thread sets and others wait for, alone or together with other events
/// (iThreadManager::waitForEvents).
///
/// An auto-reset event is cleared by the wait that it satisfies; a manual-reset event stays set
/// until reset(). Use it to signal a state; to count use iSemaphore, to protect data
/// iCriticalSection.
///
/// Made by iThreadManager::createEvent and shared through Tq::Ptr. Every operation may be called
/// from any thread while a reference is held. What a thread did before set() is visible to the
/// thread whose wait that satisfies. At most 64 threads wait on one event at a time. No operation
/// allocates. A failing system call prints "OS/Mac/ThreadEvent(LINE) : a pthread call failed
/// (ERROR)\n".
class OS_API iThreadEvent : public iWaitable
{
public:
    /// Waits until the event is set; an auto-reset event is cleared by that.
    ///
    /// @param timeoutMs milliseconds; 0 asks once without blocking, kNoTimeOut waits without limit
    /// @return eWaitSignalled, eWaitTimedOut, or eWaitFailed. Deliberately, a wait with a finite
    ///         time-out that is woken but finds the event not set (another waiter was faster, or it
    ///         was reset) gives eWaitFailed and prints a line; call it again
    /// @throw Tq::Exception::RuntimeError "addSubscriber failed" for the 65th waiter. Deliberately,
    /// the
    ///        event's waiter list stays locked then: the event is lost
    unsigned int wait(unsigned int timeoutMs) const override = 0;

    /// Sets the event and wakes its waiters.
    ///
    /// @return true
    virtual bool set() = 0;

    /// Clears the event.
    virtual void reset() = 0;
};
