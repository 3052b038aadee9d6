#pragma once

#include <OS/Threads/iMutex.h>

#include "OS/Mac/Threads/PthreadMutex.h"

#include <ctime>

/// iMutex on a recursive POSIX mutex.
class Mutex : public iMutex
{
public:
    /// @param name accepted and ignored @throw std::runtime_error after a line
    explicit Mutex(const char* name);
    ~Mutex() override;

    unsigned int wait(unsigned int timeoutMs) const override;
    void release() const override;

protected:
    /// Not the system's call of that name: polls once, and if the mutex is held by another thread
    /// pauses for 10,000,000 s and reports success without owning it. All of that is deliberate, as
    /// is that the deadline's seconds are never looked at.
    ///
    /// @param deadline null waits without limit
    /// @return an error number; a negative one when the clock cannot be read
    int pthread_mutex_timedlock(pthread_mutex_t* mutex, timespec* deadline) const;

private:
    mutable OSInternal::PthreadMutex mutex_;
};
