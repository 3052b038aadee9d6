#pragma once

#include "OS/Shared/BiasedLock.h"
#include "OS/Shared/ForkGuarded.h"

#include "OS/Mac/Threads/LockRank.h"

#include <array>
#include <cstdint>

namespace Tq {

/// The locks of a heap's bins. Which kind is chosen at build time, so that the gain of the small
/// lock stays measurable.
///
/// lock(state, bin) gives what unlock(state, bin, hold) wants back. The three for a fork are given
/// a function from a bin's index to its state.

#if defined(OS_HEAP_CRITICAL_SECTIONS)

class CriticalSectionBins
{
public:
    using State = detail::BinLockState;
    struct Hold
    {
    };

    CriticalSectionBins()
    {
        for (Section& each : sections_)
            each.section.setRank(OSInternal::LockRank::eHeapBin);
    }
    Hold lock(State&, std::uint32_t bin)
    {
        sections_[bin].section.lock();
        return {};
    }
    void unlock(State&, std::uint32_t bin, Hold) { sections_[bin].section.unlock(); }

    template <class StateOf>
    void lockForFork(StateOf)
    {
        for (Section& each : sections_)
            Tq::lockForFork(each.section);
    }
    template <class StateOf>
    void unlockAfterFork(StateOf)
    {
        for (Section& each : sections_)
            each.section.unlock();
    }
    template <class StateOf>
    void renewInChild(StateOf)
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
    using State = detail::BinLockState;
    struct Hold
    {
    };

    static Hold lock(State&, std::uint32_t) { return {}; }
    static void unlock(State&, std::uint32_t, Hold) {}

    template <class StateOf>
    static void lockForFork(StateOf)
    {
    }
    template <class StateOf>
    static void unlockAfterFork(StateOf)
    {
    }
    template <class StateOf>
    static void renewInChild(StateOf)
    {
    }
};
using BinLocks = UnlockedBins;

#else

class BiasedBins
{
public:
    using State = detail::BinLockState;
    using Hold = BiasedLock::Hold;

    [[gnu::always_inline]] static Hold lock(State& state, std::uint32_t)
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
    [[gnu::always_inline]] static void unlock(State& state, std::uint32_t, Hold hold)
    {
#ifdef OS_CHECK_LOCK_RANKS
        OSInternal::noteUnlocked(&state, OSInternal::LockRank::eHeapBin);
#endif
        BiasedLock::unlock(state, hold);
    }

    // One barrier for all bins: a single one costs as much as a thousand allocations.
    template <class StateOf>
    static void lockForFork(StateOf stateOf)
    {
        bool biased = false;
        for (std::uint32_t bin = 0; bin < MTHeap::kBinCount; ++bin)
            biased = BiasedLock::takeForFork(stateOf(bin)) || biased;
        if (!biased)
            return;
        BiasedLock::passBarrier();
        for (std::uint32_t bin = 0; bin < MTHeap::kBinCount; ++bin)
            BiasedLock::awaitOutside(stateOf(bin));
    }
    template <class StateOf>
    static void unlockAfterFork(StateOf stateOf)
    {
        for (std::uint32_t bin = 0; bin < MTHeap::kBinCount; ++bin)
            BiasedLock::unlock(stateOf(bin), Hold::eShared);
    }
    template <class StateOf>
    static void renewInChild(StateOf stateOf)
    {
        unlockAfterFork(stateOf); // a word knows no owner's number
    }
};
using BinLocks = BiasedBins;

#endif

} // namespace Tq
