#include "OS/Mac/Threads/LockRank.h"

#ifdef OS_CHECK_LOCK_RANKS

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Threads/CriticalSection.h"

#include <array>
#include <atomic>

namespace OSInternal {

namespace {

struct RankName
{
    LockRank rank;
    const char* name;
};

constexpr std::array<RankName, 12> kNames{{
    {LockRank::eExecution, "execution"},
    {LockRank::eGL, "GL"},
    {LockRank::ePool, "pool"},
    {LockRank::eQueue, "queue"},
    {LockRank::eTextureCache, "texture cache"},
    {LockRank::eNamedEvent, "named event"},
    {LockRank::eProvider, "provider"},
    {LockRank::eSettings, "settings"},
    {LockRank::eFile, "file"},
    {LockRank::eHeapBin, "heap bin"},
    {LockRank::eHeapVirtualMemory, "heap virtual memory"},
    {LockRank::eLargeObject, "large object"},
}};

struct HeldLock
{
    const void* lock;
    LockRank rank;
};

// Plain data: the checks run inside operator new and at any moment of a thread's life.
struct HeldLocks
{
    std::array<HeldLock, 32> locks; // deeper nesting goes unchecked
    unsigned int count;
};
thread_local HeldLocks held;

int level(LockRank rank)
{
    return static_cast<int>(rank) >> 4;
}

unsigned int indexOf(LockRank rank)
{
    unsigned int index = 0;
    while (index + 1 < kNames.size() && kNames[index].rank != rank)
        ++index;
    return index;
}

// @return true the first time for each pair
bool isNewViolation(unsigned int outer, unsigned int inner)
{
    static std::array<std::atomic<unsigned int>, kNames.size()> reported{};
    const unsigned int bit = 1u << inner;
    return (reported[outer].fetch_or(bit, std::memory_order_relaxed) & bit) == 0;
}

} // namespace

void setLockRank(iCriticalSection& lock, LockRank rank)
{
    if (auto* section = dynamic_cast<CriticalSection*>(&lock))
        section->setRank(rank);
}

void checkLockOrder(const void* lock, LockRank rank)
{
    if (rank == LockRank::eNone)
        return;
    for (unsigned int i = 0; i < held.count; ++i)
        if (held.locks[i].lock == lock)
            return;
    for (unsigned int i = 0; i < held.count; ++i) {
        if (level(held.locks[i].rank) < level(rank))
            continue;
        const unsigned int outer = indexOf(held.locks[i].rank);
        const unsigned int inner = indexOf(rank);
        if (isNewViolation(outer, inner))
            printLine("lock order: %s lock taken while holding %s lock\n", kNames[inner].name,
                      kNames[outer].name);
    }
}

void noteLocked(const void* lock, LockRank rank)
{
    if (rank != LockRank::eNone && held.count < held.locks.size())
        held.locks[held.count++] = {lock, rank};
}

void noteUnlocked(const void* lock, LockRank rank)
{
    if (rank == LockRank::eNone)
        return;
    for (unsigned int i = held.count; i-- > 0;)
        if (held.locks[i].lock == lock) {
            for (--held.count; i < held.count; ++i)
                held.locks[i] = held.locks[i + 1];
            return;
        }
}

} // namespace OSInternal

#endif
