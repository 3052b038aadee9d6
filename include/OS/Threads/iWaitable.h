#pragma once

#include <OS/Core/iObject.h>

/// Something that a thread can wait for: a mutex, a semaphore or an event.
class OS_API iWaitable : public iObject
{
public:
    /// What every wait returns. Which of them a time-out gives differs between the kinds of object,
    /// deliberately: each interface says so. 0 is never returned.
    enum eWaitResult : unsigned int
    {
        eWaitTimedOut = 1,  ///< the time ran out
        eWaitFailed = 2,    ///< the wait failed; for a semaphore also: no unit came in time
        eWaitSignalled = 3, ///< obtained: the mutex, a unit of the semaphore, the event's signal
    };

    /// The time-out that waits without limit.
    static constexpr unsigned int kNoTimeOut = 0xFFFFFFFFu;

    /// Blocks the calling thread until the object is obtained or the time runs out.
    ///
    /// @param timeoutMs milliseconds; 0 tries once, kNoTimeOut waits without limit
    /// @return one of eWaitResult
    virtual unsigned int wait(unsigned int timeoutMs) const = 0;
};
