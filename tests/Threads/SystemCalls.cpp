#include "Threads/SystemCalls.h"

#include <cstring>
#include <pthread.h>

namespace {

struct PlannedFailure
{
    const char* name;
    int error;
    int skip;
    bool happened;
};

thread_local PlannedFailure planned;
thread_local FakeTime* fakeTime;

// @return the error that this call is to report, or 0
int plannedError(const char* name)
{
    if (!planned.name || planned.happened || std::strcmp(planned.name, name) != 0)
        return 0;
    if (planned.skip-- > 0)
        return 0;
    planned.happened = true;
    return planned.error;
}

} // namespace

FailingCall::FailingCall(const char* name, int error, int skip)
{
    planned = {name, error, skip, false};
}

FailingCall::~FailingCall()
{
    planned = {};
}

bool FailingCall::happened() const
{
    return planned.happened;
}

FakeTime::FakeTime()
{
    fakeTime = this;
}

FakeTime::~FakeTime()
{
    fakeTime = nullptr;
}

extern "C" {

#define FAIL_INSTEAD(name, parameters, arguments)                                                  \
    int __real_##name parameters;                                                                  \
    int __wrap_##name parameters                                                                   \
    {                                                                                              \
        const int error = plannedError(#name);                                                     \
        return error ? error : __real_##name arguments;                                            \
    }

#define FAIL_AFTERWARDS(name, parameters, arguments)                                               \
    int __real_##name parameters;                                                                  \
    int __wrap_##name parameters                                                                   \
    {                                                                                              \
        const int result = __real_##name arguments;                                                \
        const int error = plannedError(#name);                                                     \
        return error ? error : result;                                                             \
    }

FAIL_INSTEAD(pthread_create,
             (pthread_t * thread, const pthread_attr_t* attributes, void* (*body)(void*),
              void* argument),
             (thread, attributes, body, argument))
FAIL_INSTEAD(pthread_mutexattr_init, (pthread_mutexattr_t * attributes), (attributes))
FAIL_INSTEAD(pthread_mutexattr_settype, (pthread_mutexattr_t * attributes, int type),
             (attributes, type))
FAIL_AFTERWARDS(pthread_mutexattr_destroy, (pthread_mutexattr_t * attributes), (attributes))
FAIL_INSTEAD(pthread_mutex_init, (pthread_mutex_t * mutex, const pthread_mutexattr_t* attributes),
             (mutex, attributes))
FAIL_AFTERWARDS(pthread_mutex_destroy, (pthread_mutex_t * mutex), (mutex))
FAIL_INSTEAD(pthread_mutex_lock, (pthread_mutex_t * mutex), (mutex))
FAIL_INSTEAD(pthread_mutex_trylock, (pthread_mutex_t * mutex), (mutex))
FAIL_AFTERWARDS(pthread_mutex_unlock, (pthread_mutex_t * mutex), (mutex))
FAIL_INSTEAD(pthread_cond_init, (pthread_cond_t * condition, const pthread_condattr_t* attributes),
             (condition, attributes))
FAIL_AFTERWARDS(pthread_cond_destroy, (pthread_cond_t * condition), (condition))
FAIL_INSTEAD(pthread_cond_signal, (pthread_cond_t * condition), (condition))
FAIL_INSTEAD(pthread_cond_broadcast, (pthread_cond_t * condition), (condition))
FAIL_INSTEAD(pthread_cond_wait, (pthread_cond_t * condition, pthread_mutex_t* mutex),
             (condition, mutex))
FAIL_INSTEAD(pthread_cond_timedwait,
             (pthread_cond_t * condition, pthread_mutex_t* mutex, const timespec* deadline),
             (condition, mutex, deadline))

int __real_nanosleep(const timespec* request, timespec* remaining);
int __wrap_nanosleep(const timespec* request, timespec* remaining)
{
    if (!fakeTime)
        return __real_nanosleep(request, remaining);
    fakeTime->pauses.push_back(*request);
    fakeTime->onPause();
    if (fakeTime->pauseResults.empty())
        return 0;
    const int result = fakeTime->pauseResults.front();
    fakeTime->pauseResults.pop_front();
    if (result != 0 && remaining)
        --remaining->tv_sec; // a second has passed when the signal came
    return result;
}

int __real_gettimeofday(timeval* now, void* zone);
int __wrap_gettimeofday(timeval* now, void* zone)
{
    if (!fakeTime)
        return __real_gettimeofday(now, zone);
    fakeTime->zonesAsked += zone != nullptr;
    FakeTime::ClockRead read{0, 0};
    if (!fakeTime->clockReads.empty()) {
        read = fakeTime->clockReads.front();
        fakeTime->clockReads.pop_front();
    }
    now->tv_sec = 0;
    now->tv_usec = read.microseconds;
    return read.result;
}

int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now)
{
    if (!fakeTime)
        return __real_clock_gettime(clock, now);
    *now = fakeTime->now;
    return 0;
}

} // extern "C"
