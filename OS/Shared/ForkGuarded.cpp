#include "OS/Shared/ForkGuarded.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Shared/TestAndSetLock.h"

#include <new>
#include <pthread.h>

namespace Tq {

namespace {

TestAndSetLock::Word listLock{0};
ForkGuarded* first = nullptr;

} // namespace

struct ForkHandlers
{
    static void before()
    {
        TestAndSetLock::lock(listLock);
        for (ForkGuarded* heap = first; heap; heap = heap->next_)
            heap->lockForFork();
    }
    static void inParent()
    {
        for (ForkGuarded* heap = first; heap; heap = heap->next_)
            heap->unlockAfterFork();
        TestAndSetLock::unlock(listLock);
    }
    static void inChild()
    {
        for (ForkGuarded* heap = first; heap; heap = heap->next_)
            heap->renewInChild();
        TestAndSetLock::unlock(listLock);
    }
    static bool install()
    {
        const int error = pthread_atfork(before, inParent, inChild);
        if (error != 0)
            OSInternal::reportPthreadFailure("OS/Shared/ForkGuarded", 44, error);
        return error == 0;
    }
};

namespace {

// Early: handlers run outwards from the first one, so those of clients may still use the heaps.
[[maybe_unused]] const bool installed = ForkHandlers::install();

} // namespace

void ForkGuarded::enrol()
{
    TestAndSetLock::lock(listLock);
    next_ = first;
    if (first)
        first->previous_ = this;
    first = this;
    TestAndSetLock::unlock(listLock);
}

void ForkGuarded::withdraw()
{
    TestAndSetLock::lock(listLock);
    (previous_ ? previous_->next_ : first) = next_;
    if (next_)
        next_->previous_ = previous_;
    TestAndSetLock::unlock(listLock);
}

void lockForFork(OSInternal::CriticalSection& section)
{
    while (!section.lockIfNotLocked())
        TestAndSetLock::nap();
}

void renewInChild(OSInternal::CriticalSection& section, OSInternal::LockRank rank)
{
#ifdef OS_CHECK_LOCK_RANKS
    OSInternal::noteUnlocked(&section, rank);
#endif
    new (&section) OSInternal::CriticalSection(0);
    section.setRank(rank);
}

} // namespace Tq
