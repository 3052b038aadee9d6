#include "OS/Mac/Threads/Mutex.h"

#include "OS/Mac/Threads/ThreadManager.h"

#include <cerrno>
#include <sys/time.h>

using OSInternal::pthreadFailed;
using OSInternal::throwIfPthreadFailed;

namespace {

constexpr char kPlace[] = "OS/Mac/Mutex";
constexpr time_t kPauseSeconds = 10'000'000;

} // namespace

Mutex::Mutex(const char* /*name*/)
{
    OSInternal::PthreadMutexAttributes attributes;
    throwIfPthreadFailed(kPlace, 44, attributes.initialise(), "pthread_mutexattr_init failed");
    throwIfPthreadFailed(kPlace, 45, attributes.setType(PTHREAD_MUTEX_RECURSIVE),
                         "pthread_mutexattr_settype failed");
    throwIfPthreadFailed(kPlace, 46, mutex_.initialise(attributes), "pthread_mutex_init failed.");
    throwIfPthreadFailed(kPlace, 47, attributes.destroy(), "pthread_mutexattr_destroy failed.");
}

Mutex::~Mutex()
{
    pthreadFailed(kPlace, 52, mutex_.destroy());
}

unsigned int Mutex::wait(unsigned int timeoutMs) const
{
    if (timeoutMs == kNoTimeOut) {
        const int rc = mutex_.lock();
        return rc > 0 && pthreadFailed(kPlace, 104, rc) ? eWaitFailed : eWaitSignalled;
    }
    timespec deadline;
    ThreadManager::MsecToTimespecAbs(deadline, timeoutMs);
    const int rc = pthread_mutex_timedlock(mutex_.get(), &deadline);
    if (rc == 0)
        return eWaitSignalled;
    if (rc == ETIMEDOUT)
        return eWaitTimedOut;
    if (rc > 0)
        pthreadFailed(kPlace, 120, rc);
    return eWaitFailed;
}

int Mutex::pthread_mutex_timedlock(pthread_mutex_t* mutex, timespec* deadline) const
{
    if (!deadline)
        return pthread_mutex_lock(mutex);

    timeval now{};
    struct timezone zone
    {
    };
    gettimeofday(&now, &zone);
    const auto startMicroseconds = now.tv_usec;
    for (;;) {
        const int rc = pthread_mutex_trylock(mutex);
        if (rc != EBUSY)
            return rc;

        timespec pause{kPauseSeconds, 0};
        while (nanosleep(&pause, &pause) == -1) {
        }
        const int clockRc = gettimeofday(&now, &zone);
        if (clockRc == 0 || deadline->tv_nsec <= (now.tv_usec - startMicroseconds) * 1000)
            return clockRc;
    }
}

void Mutex::release() const
{
    throwIfPthreadFailed(kPlace, 128, mutex_.unlock(), "pthread_mutex_unlock failed.");
}
