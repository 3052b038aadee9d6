#include "OS/Shared/BiasedLock.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <linux/membarrier.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Tq {

namespace {

constexpr int kAttemptsBeforeNap = 1000;

// A barrier interrupts the other processors, which takes some ten microseconds: as much as a
// thousand shared uses take longer than biased ones.
constexpr std::uint16_t kFirstStreak = 512;
constexpr std::uint8_t kMostDoublings = 6;
constexpr std::uint16_t kLongestStreak = kFirstStreak << kMostDoublings;

// Enough to guess by: a wrong guess costs a barrier.
std::uint8_t shortened(std::uintptr_t thread)
{
    return static_cast<std::uint8_t>(thread >> 12);
}

long membarrier(int command)
{
    return syscall(SYS_membarrier, command, 0, 0);
}

bool canBias()
{
#if defined(__SANITIZE_THREAD__) || !(defined(__x86_64__) || defined(__aarch64__))
    return false;
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
    return false;
#endif
#endif
    return membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED) == 0;
}

// Until this is set no lock is biased, which is safe at any time.
const bool biasing = canBias();

} // namespace

void BiasedLock::passBarrier()
{
    if (membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED) == 0)
        return;
    // A child of a fork might have to ask anew; and there is a slower barrier that needs no asking.
    membarrier(MEMBARRIER_CMD_REGISTER_PRIVATE_EXPEDITED);
    if (membarrier(MEMBARRIER_CMD_PRIVATE_EXPEDITED) == 0 || membarrier(MEMBARRIER_CMD_GLOBAL) == 0)
        return;
    OSInternal::reportAssertion("membarrier() == 0", "OS/Shared/BiasedLock line 58");
    TestAndSetLock::nap(); // no store takes so long to be seen
}

void BiasedLock::awaitOutside(const State& state)
{
    for (int attempt = 0; state.inside.load(std::memory_order_acquire) != 0; ++attempt)
        if (attempt < kAttemptsBeforeNap)
            TestAndSetLock::relax();
        else
            TestAndSetLock::nap();
}

void BiasedLock::endBias(State& state, std::uint16_t streak)
{
    state.owner.store(State::kShared, std::memory_order_relaxed);
    state.streak = streak;
}

// For the owner all is as before after its next use, the forking thread or not.
bool BiasedLock::takeForFork(State& state)
{
    TestAndSetLock::lock(state.taken);
    const std::uintptr_t owner = state.owner.load(std::memory_order_relaxed);
    if (owner == State::kShared || owner == State::kNobody)
        return false;
    state.candidate = shortened(owner);
    endBias(state, kLongestStreak);
    return true;
}

void BiasedLock::lockShared(State& state, std::uintptr_t self)
{
    TestAndSetLock::lock(state.taken);
    const std::uintptr_t owner = state.owner.load(std::memory_order_relaxed);
    if (owner == State::kShared) {
        if (biasing)
            noteSharedUse(state, self);
    } else if (owner == State::kNobody) {
        state.owner.store(biasing ? self : State::kShared, std::memory_order_relaxed);
    } else if (owner != self) {
        state.biasesEnded =
            std::min(static_cast<std::uint8_t>(state.biasesEnded + 1), kMostDoublings);
        endBias(state, 0);
        passBarrier();
        awaitOutside(state);
    }
}

// The bias begins with the thread's next use; until then it holds the lock as others would.
void BiasedLock::noteSharedUse(State& state, std::uintptr_t self)
{
    if (state.candidate != shortened(self)) {
        state.candidate = shortened(self);
        state.streak = 0;
    } else if (++state.streak >= kFirstStreak << state.biasesEnded) {
        state.owner.store(self, std::memory_order_relaxed);
    }
}

} // namespace Tq
