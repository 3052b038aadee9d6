#pragma once

#include "OS/Shared/TestAndSetLock.h"

#include "OS/Mac/Threads/LockRank.h"

#if defined(OS_HEAP_CRITICAL_SECTIONS)
#include "OS/Shared/ForkGuarded.h"
#include <OS/Shared/MTHeap.h>
#include <array>
#endif

namespace Tq {

/// The locks of a heap's bins. Which kind is chosen at build time, so that the gain of the small
/// lock stays measurable; `word` is the one in the bin, `bin` its index.
#if defined(OS_HEAP_CRITICAL_SECTIONS)

class CriticalSectionBins
{
public:
    CriticalSectionBins()
    {
        for (Section& each : sections_)
            each.section.setRank(OSInternal::LockRank::eHeapBin);
    }
    void lock(TestAndSetLock::Word&, std::uint32_t bin) { sections_[bin].section.lock(); }
    void unlock(TestAndSetLock::Word&, std::uint32_t bin) { sections_[bin].section.unlock(); }
    void lockForFork(TestAndSetLock::Word&, std::uint32_t bin)
    {
        Tq::lockForFork(sections_[bin].section);
    }
    void unlockAfterFork(TestAndSetLock::Word&, std::uint32_t bin)
    {
        sections_[bin].section.unlock();
    }
    void renewInChild(TestAndSetLock::Word&, std::uint32_t bin)
    {
        Tq::renewInChild(sections_[bin].section, OSInternal::LockRank::eHeapBin);
    }

private:
    struct Section
    {
        OSInternal::CriticalSection section{0};
    };
    std::array<Section, MTHeap::kBinCount> sections_;
};
using BinLocks = CriticalSectionBins;

#elif defined(OS_HEAP_WITHOUT_LOCKS)

/// For one thread, and only to measure what the locks cost.
class UnlockedBins
{
public:
    static void lock(TestAndSetLock::Word&, std::uint32_t) {}
    static void unlock(TestAndSetLock::Word&, std::uint32_t) {}
    static void lockForFork(TestAndSetLock::Word&, std::uint32_t) {}
    static void unlockAfterFork(TestAndSetLock::Word&, std::uint32_t) {}
    static void renewInChild(TestAndSetLock::Word&, std::uint32_t) {}
};
using BinLocks = UnlockedBins;

#else

class TestAndSetBins
{
public:
    static void lock(TestAndSetLock::Word& word, std::uint32_t)
    {
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::checkLockOrder(&word, OSInternal::LockRank::eHeapBin);
#endif
        TestAndSetLock::lock(word);
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::noteLocked(&word, OSInternal::LockRank::eHeapBin);
#endif
    }
    static void unlock(TestAndSetLock::Word& word, std::uint32_t)
    {
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::noteUnlocked(&word, OSInternal::LockRank::eHeapBin);
#endif
        TestAndSetLock::unlock(word);
    }
    // All of a heap's at once, which is no matter for the check of their order.
    static void lockForFork(TestAndSetLock::Word& word, std::uint32_t)
    {
        TestAndSetLock::lock(word);
    }
    static void unlockAfterFork(TestAndSetLock::Word& word, std::uint32_t)
    {
        TestAndSetLock::unlock(word);
    }
    static void renewInChild(TestAndSetLock::Word& word, std::uint32_t)
    {
        TestAndSetLock::unlock(word);
    }
};
using BinLocks = TestAndSetBins;

#endif

} // namespace Tq
