#pragma once

#include <OS/Threads/iCriticalSection.h>

#include "OS/Mac/Threads/LockRank.h"

#include <pthread.h>

namespace OSInternal {

/// iCriticalSection on a recursive POSIX mutex.
class CriticalSection final : public iCriticalSection
{
public:
    /// @param spinCount anything but 0 is reported and ignored
    explicit CriticalSection(unsigned int spinCount);
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    ~CriticalSection() override;

    void lock() override;
    bool lockIfNotLocked() override;
    void unlock() override;

#ifdef OS_CHECK_LOCK_RANKS
    void setRank(LockRank rank)
    {
        rank_ = rank;
    }
#else
    void setRank(LockRank) {}
#endif

private:
    pthread_mutex_t mutex_;
#ifdef OS_CHECK_LOCK_RANKS
    LockRank rank_ = LockRank::eNone;
#endif
};

} // namespace OSInternal
