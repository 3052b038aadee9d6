#pragma once

#include <OS/Core/iObject.h>

/// The recursive lock that protects data. The owning thread may take it again and gives it back as
/// often.
///
/// Hold it through a CriticalSectionLock. Keep what happens under it short, and wait for nothing
/// while holding it: it has no time-out and cannot be waited for together with events. For that use
/// iMutex or iThreadEvent.
///
/// Made by iThreadManager::createCriticalSection and shared through Tq::Ptr. Every operation may be
/// called from any thread. It must not be destroyed while held; that is not detected. Nothing here
/// throws.
class OS_API iCriticalSection : public iObject
{
public:
    /// Takes the lock, however long that lasts.
    ///
    /// Should the system refuse, prints "CriticalSection::lock() : pthread_mutex_lock failed
    /// (%d)\n" and an assertion, and returns without the lock.
    virtual void lock() = 0;

    /// Takes the lock unless another thread holds it.
    ///
    /// @return true when the calling thread now holds it, once more if it did already; false when
    ///         another thread does. Any other failure is false too, with a line that names the
    ///         method "CriticalSection::unlock()", deliberately, and an assertion.
    virtual bool lockIfNotLocked() = 0;

    /// Gives the lock back once; the calling thread must hold it.
    ///
    /// Should the system refuse, prints
    /// "CriticalSection::unlock() : pthread_mutex_unlock failed (%d)\n" and an assertion.
    virtual void unlock() = 0;
};
