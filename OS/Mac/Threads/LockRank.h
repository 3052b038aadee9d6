#pragma once

class iCriticalSection;

/// The order in which locks are taken, checked in debug builds (OS_CHECK_LOCK_RANKS).
///
/// A thread may wait for a lock only while every ranked lock that it holds has a lower level;
/// taking a lock again that it already holds is always allowed, and so is trying without waiting. A
/// violation prints one line, once for each pair of ranks, and the lock is taken all the same.
namespace OSInternal {

/// The level is the upper half of the number.
enum class LockRank : unsigned char
{
    eNone = 0x00, // not checked
    eExecution = 0x10,
    eGL = 0x20,
    ePool = 0x21,
    // Leaves, but for the heaps' locks, which any allocation takes.
    eQueue = 0x30,
    eTextureCache = 0x31,
    eNamedEvent = 0x32,
    eProvider = 0x33,
    eSettings = 0x34,
    eFile = 0x35,
    eHeapBin = 0x40,
    eHeapVirtualMemory = 0x50,
    eLargeObject = 0x51,
};

/// Gives a lock made by createCriticalSection its rank, before it is first used. Nothing in builds
/// without the check.
#ifdef OS_CHECK_LOCK_RANKS
void setLockRank(iCriticalSection& lock, LockRank rank);

/// Called before a thread waits for a lock, after it got it, and before it gives it back.
void checkLockOrder(const void* lock, LockRank rank);
void noteLocked(const void* lock, LockRank rank);
void noteUnlocked(const void* lock, LockRank rank);
#else
inline void setLockRank(iCriticalSection&, LockRank) {}
#endif

} // namespace OSInternal
