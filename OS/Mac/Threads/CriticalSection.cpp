#include "OS/Mac/Threads/CriticalSection.h"

#include "OS/Mac/Core/Assertion.h"

#include <cerrno>

namespace OSInternal {

namespace {

constexpr char kSuccessExpected[] = "rc == PTHREAD_SUCCESS";

} // namespace

CriticalSection::CriticalSection(unsigned int spinCount)
{
    if (spinCount != 0)
        reportAssertion("spinCount == 0", "OS/Mac/CriticalSection line 23");
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&mutex_, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

CriticalSection::~CriticalSection()
{
    pthread_mutex_destroy(&mutex_);
}

void CriticalSection::lock()
{
#ifdef OS_CHECK_LOCK_RANKS
    checkLockOrder(this, rank_);
#endif
    const int rc = pthread_mutex_lock(&mutex_);
    if (rc != 0) {
        printLine("CriticalSection::lock() : pthread_mutex_lock failed (%d)\n", rc);
        reportAssertion(kSuccessExpected, "OS/Mac/CriticalSection line 44");
        return;
    }
#ifdef OS_CHECK_LOCK_RANKS
    noteLocked(this, rank_);
#endif
}

void CriticalSection::unlock()
{
#ifdef OS_CHECK_LOCK_RANKS
    noteUnlocked(this, rank_);
#endif
    const int rc = pthread_mutex_unlock(&mutex_);
    if (rc != 0) {
        printLine("CriticalSection::unlock() : pthread_mutex_unlock failed (%d)\n", rc);
        reportAssertion(kSuccessExpected, "OS/Mac/CriticalSection line 55");
    }
}

bool CriticalSection::lockIfNotLocked()
{
    const int rc = pthread_mutex_trylock(&mutex_);
    if (rc == EBUSY)
        return false;
    if (rc != 0) {
        // The published line names the other method.
        printLine("CriticalSection::unlock() : pthread_mutex_trylock failed (%d)\n", rc);
        reportAssertion(kSuccessExpected, "OS/Mac/CriticalSection line 80");
        return false;
    }
#ifdef OS_CHECK_LOCK_RANKS
    noteLocked(this, rank_);
#endif
    return true;
}

} // namespace OSInternal
