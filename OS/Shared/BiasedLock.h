#pragma once

#include "OS/Shared/TestAndSetLock.h"

#include <atomic>
#include <cstdint>

namespace Tq {

/// The lock of a heap's list of blocks. Taking it costs a thread that uses it alone no locked
/// instruction, which is most of what a pair of allocation and release costs otherwise.
///
/// The first thread that takes the lock owns it by bias: it marks itself inside by a plain store
/// and looks whether it still is the owner. Another thread that wants the lock takes `taken`, ends
/// the bias, makes every running thread of the process pass a memory barrier (the membarrier system
/// call), and waits until the owner is outside; from then on the lock is a test-and-set lock for
/// all. A thread that alone took it for long becomes the owner again; every bias that had to be
/// ended makes that harder, so two threads in turn cannot play it back and forth.
///
/// Threads are told apart by their thread pointer, so a new thread may inherit the locks of one
/// that has ended. Not recursive, not fair; released by the thread that took it. Where the system
/// has no such barrier, and under ThreadSanitizer, which cannot see it, no lock is ever biased.
class BiasedLock
{
public:
    /// What the lock keeps; unlocked and nobody's when all is zero.
    struct State
    {
        static constexpr std::uintptr_t kNobody = 0;
        static constexpr std::uintptr_t kShared = 1;

        std::atomic<std::uintptr_t> owner{kNobody};
        TestAndSetLock::Word taken{0};
        std::atomic<std::uint8_t> inside{0};
        std::uint8_t biasesEnded = 0;
        std::uint8_t candidate = 0;
        std::uint16_t streak = 0;
    };

    /// How a lock is held: pass it to unlock.
    enum class Hold : bool
    {
        eShared,
        eBiased
    };

    /// Takes it by bias, which neither waits nor calls anything.
    [[gnu::always_inline]] static bool tryBiased(State& state)
    {
        const std::uintptr_t self = threadPointer();
        if (state.owner.load(std::memory_order_relaxed) != self) [[unlikely]]
            return false;
        state.inside.store(1, std::memory_order_relaxed);
        // The compiler keeps the order; for the processor's the one who ends the bias cares.
        std::atomic_signal_fence(std::memory_order_seq_cst);
        if (state.owner.load(std::memory_order_acquire) == self) [[likely]]
            return true;
        state.inside.store(0, std::memory_order_release);
        return false;
    }

    static Hold lock(State& state)
    {
        if (tryBiased(state))
            return Hold::eBiased;
        lockShared(state, threadPointer());
        return Hold::eShared;
    }

    [[gnu::always_inline]] static void unlock(State& state, Hold hold)
    {
        if (hold == Hold::eBiased) [[likely]]
            state.inside.store(0, std::memory_order_release);
        else
            TestAndSetLock::unlock(state.taken);
    }

    /// For many locks at once, as a fork wants them: takeForFork for each, then, if one of them
    /// says that it was biased, passBarrier once and awaitOutside for each. Give them back by
    /// unlock(state, Hold::eShared).
    static bool takeForFork(State& state);
    static void passBarrier();
    static void awaitOutside(const State& state);

private:
    static std::uintptr_t threadPointer()
    {
#if defined(__x86_64__)
        std::uintptr_t self;
        asm("movq %%fs:0, %0" : "=r"(self));
        return self;
#elif defined(__aarch64__)
        return reinterpret_cast<std::uintptr_t>(__builtin_thread_pointer());
#else
        return State::kShared + 1; // nobody's
#endif
    }
    static void endBias(State& state, std::uint16_t streak);
    static void lockShared(State& state, std::uintptr_t self);
    static void noteSharedUse(State& state, std::uintptr_t self);
};

} // namespace Tq
