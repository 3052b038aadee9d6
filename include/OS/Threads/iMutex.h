#pragma once

#include <OS/Threads/iWaitable.h>

/// A recursive lock that can be waited for. The owning thread may take it again and gives it back
/// as often.
///
/// WARNING: it has no usable time-out. A contended wait with any time-out but kNoTimeOut, 0
/// included, pauses for 10,000,000 seconds and then answers eWaitSignalled WITHOUT owning the
/// mutex. This is deliberate and will not change. For timed waiting use iSemaphore or iThreadEvent;
/// for plain locking use iCriticalSection.
///
/// Made by iThreadManager::createMutex and shared through Tq::Ptr; never shared between processes.
/// Every operation may be called from any thread. It must not be destroyed while held; that is not
/// detected.
class OS_API iMutex : public iWaitable
{
public:
    /// Takes the mutex.
    ///
    /// @param timeoutMs kNoTimeOut waits without limit. Any other value takes a mutex that is free,
    /// or
    ///                  held by the calling thread, at once; see the warning for a contended one
    /// @return eWaitSignalled as said above; eWaitFailed when the system refuses, in most cases
    /// after
    ///         a line "OS/Mac/Mutex(LINE) : a pthread call failed (ERROR)\n"; eWaitTimedOut only
    ///         when the system itself reports a time-out
    unsigned int wait(unsigned int timeoutMs) const override = 0;

    /// Gives the mutex back once; the calling thread must own it.
    ///
    /// @throw std::runtime_error "pthread_mutex_unlock failed." when the system refuses, after a
    /// line
    virtual void release() const = 0;
};
