#pragma once

#include "OS/Mac/Core/Assertion.h"

#include <cerrno>
#include <pthread.h>

/// Owners of POSIX handles whose every step the caller checks: each operation returns the system's
/// error number. What was initialised and not destroyed by hand goes, silently, with its owner.
namespace OSInternal {

/// Prints the failure line of a pthread call; nothing for 0. @return whether it failed
inline bool pthreadFailed(const char* place, int line, int error)
{
    if (error == 0) [[likely]]
        return false;
    reportPthreadFailure(place, line, error);
    return true;
}

/// As above, then throws std::runtime_error with a text that must be a literal.
void throwIfPthreadFailed(const char* place, int line, int error, const char* message);

class PthreadMutexAttributes
{
public:
    PthreadMutexAttributes() = default;
    PthreadMutexAttributes(const PthreadMutexAttributes&) = delete;
    PthreadMutexAttributes& operator=(const PthreadMutexAttributes&) = delete;
    ~PthreadMutexAttributes();

    int initialise();
    int setType(int type);
    int destroy();
    const pthread_mutexattr_t* get() const { return &attributes_; }

private:
    pthread_mutexattr_t attributes_;
    bool initialised_ = false;
};

class PthreadMutex
{
public:
    PthreadMutex() = default;
    PthreadMutex(const PthreadMutex&) = delete;
    PthreadMutex& operator=(const PthreadMutex&) = delete;
    ~PthreadMutex();

    int initialise(const PthreadMutexAttributes& attributes);
    int lock() { return pthread_mutex_lock(&mutex_); }
    int unlock() { return pthread_mutex_unlock(&mutex_); }
    /// For sequences that go on after a failed lock().
    ///
    /// @param lockError what lock() returned
    /// @return what the system would answer; it is only asked when the calling thread owns the
    /// mutex
    int unlockAfter(int lockError)
    {
        return lockError == 0 || lockError == EDEADLK ? unlock() : EPERM;
    }
    int destroy();
    pthread_mutex_t* get() { return &mutex_; }

private:
    pthread_mutex_t mutex_;
    bool initialised_ = false;
};

class PthreadCondition
{
public:
    PthreadCondition() = default;
    PthreadCondition(const PthreadCondition&) = delete;
    PthreadCondition& operator=(const PthreadCondition&) = delete;
    ~PthreadCondition();

    int initialise();
    int destroy();
    int signal() { return pthread_cond_signal(&condition_); }
    int broadcast() { return pthread_cond_broadcast(&condition_); }
    int wait(PthreadMutex& mutex) { return pthread_cond_wait(&condition_, mutex.get()); }
    /// @param deadline on the calendar clock
    int waitUntil(PthreadMutex& mutex, const timespec& deadline)
    {
        return pthread_cond_timedwait(&condition_, mutex.get(), &deadline);
    }

private:
    pthread_cond_t condition_;
    bool initialised_ = false;
};

} // namespace OSInternal
