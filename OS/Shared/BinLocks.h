#pragma once

#include "OS/Shared/BiasedLock.h"
#include "OS/Shared/ForkGuarded.h"
#include "OS/Shared/ThreadsList.h"

#include "OS/Mac/Threads/LockRank.h"

#include <OS/Shared/MTHeap.h>

#include <array>
#include <cstdint>

namespace Tq {

/// The locks of a heap's bins. Which kind is chosen at build time, so that the gain of the small
/// lock stays measurable.
///
/// Each bin has kLists lists of free blocks, each with a state. lock(state, bin) gives what
/// unlock(state, bin, hold) wants back; tryLock(state) takes only what is to be had at no cost, and
/// is answered by unlock(state). The three for a fork are given the number of all states,
/// and a function from an index to one.

#if defined(OS_HEAP_CRITICAL_SECTIONS)

class CriticalSectionBins
{
public:
    static constexpr std::uint32_t kLists = 1;
    using State = BiasedLock::State;
    struct Hold
    {
    };

    CriticalSectionBins()
    {
        for (Section& each : sections_)
            each.section.setRank(OSInternal::LockRank::eHeapBin);
    }
    static bool tryLock(State&) { return false; }
    static void unlock(State&) {}
    Hold lock(State&, std::uint32_t bin)
    {
        sections_[bin].section.lock();
        return {};
    }
    void unlock(State&, std::uint32_t bin, Hold) { sections_[bin].section.unlock(); }

    template <class StateOf>
    void lockForFork(std::uint32_t, StateOf)
    {
        for (Section& each : sections_)
            Tq::lockForFork(each.section);
    }
    template <class StateOf>
    void unlockAfterFork(std::uint32_t, StateOf)
    {
        for (Section& each : sections_)
            each.section.unlock();
    }
    template <class StateOf>
    void renewInChild(std::uint32_t, StateOf)
    {
        for (Section& each : sections_)
            Tq::renewInChild(each.section, OSInternal::LockRank::eHeapBin);
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
    static constexpr std::uint32_t kLists = 1;
    using State = BiasedLock::State;
    struct Hold
    {
    };

    static bool tryLock(State&) { return true; }
    static void unlock(State&) {}
    static Hold lock(State&, std::uint32_t) { return {}; }
    static void unlock(State&, std::uint32_t, Hold) {}

    template <class StateOf>
    static void lockForFork(std::uint32_t, StateOf)
    {
    }
    template <class StateOf>
    static void unlockAfterFork(std::uint32_t, StateOf)
    {
    }
    template <class StateOf>
    static void renewInChild(std::uint32_t, StateOf)
    {
    }
};
using BinLocks = UnlockedBins;

#else

class BiasedBins
{
public:
    static constexpr std::uint32_t kLists = ThreadsList::kCount;
    using State = BiasedLock::State;
    using Hold = BiasedLock::Hold;

    // Neither waits nor takes another lock: nothing to check.
    [[gnu::always_inline]] static bool tryLock(State& state)
    {
        return BiasedLock::tryBiased(state);
    }
    [[gnu::always_inline]] static void unlock(State& state)
    {
        BiasedLock::unlock(state, Hold::eBiased);
    }
    static Hold lock(State& state, std::uint32_t)
    {
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::checkLockOrder(&state, OSInternal::LockRank::eHeapBin);
#endif
        const Hold hold = BiasedLock::lock(state);
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::noteLocked(&state, OSInternal::LockRank::eHeapBin);
#endif
        return hold;
    }
    static void unlock(State& state, std::uint32_t, Hold hold)
    {
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::noteUnlocked(&state, OSInternal::LockRank::eHeapBin);
#endif
        BiasedLock::unlock(state, hold);
    }

    // One barrier for all bins: a single one costs as much as a thousand allocations.
    template <class StateOf>
    static void lockForFork(std::uint32_t count, StateOf stateOf)
    {
        bool biased = false;
        for (std::uint32_t i = 0; i < count; ++i)
            biased = BiasedLock::takeForFork(stateOf(i)) || biased;
        if (!biased)
            return;
        BiasedLock::passBarrier();
        for (std::uint32_t i = 0; i < count; ++i)
            BiasedLock::awaitOutside(stateOf(i));
    }
    template <class StateOf>
    static void unlockAfterFork(std::uint32_t count, StateOf stateOf)
    {
        for (std::uint32_t i = 0; i < count; ++i)
            BiasedLock::unlock(stateOf(i), Hold::eShared);
    }
    template <class StateOf>
    static void renewInChild(std::uint32_t count, StateOf stateOf)
    {
        unlockAfterFork(count, stateOf); // a word knows no owner's number
    }
};
using BinLocks = BiasedBins;

#endif

} // namespace Tq
