#pragma once

#include <atomic>
#include <cstdint>

namespace Tq {

/// A lock in one byte: a locked instruction to take it and a plain store to give it back.
///
/// For sections of a few instructions that call nothing of a client's. Not recursive and not fair.
/// A thread that waits backs off and soon sleeps, so a preempted owner gets its processor back
/// under every scheduling policy.
class TestAndSetLock
{
public:
    using Word = std::atomic<std::uint8_t>;

    static void lock(Word& word)
    {
        if (word.exchange(1, std::memory_order_acquire) != 0) [[unlikely]]
            wait(word);
    }
    static void unlock(Word& word) { word.store(0, std::memory_order_release); }

    /// What a waiting thread does between attempts, and after many.
    static void relax()
    {
#if defined(__x86_64__)
        __builtin_ia32_pause();
#elif defined(__aarch64__)
        asm volatile("yield");
#endif
    }
    static void nap();

private:
    static void wait(Word& word);
};

} // namespace Tq
