#include "OS/Shared/TestAndSetLock.h"

#include <algorithm>
#include <ctime>

namespace Tq {

namespace {

constexpr int kAttemptsBeforeNap = 20;
constexpr int kLongestPause = 64;
constexpr long kNapNs = 50'000;

} // namespace

void TestAndSetLock::nap()
{
    const timespec pause{0, kNapNs};
    nanosleep(&pause, nullptr);
}

void TestAndSetLock::wait(Word& word)
{
    int pauses = 1;
    for (int attempt = 0;; ++attempt) {
        if (attempt < kAttemptsBeforeNap)
            for (int i = 0; i < pauses; ++i)
                relax();
        else
            nap();
        pauses = std::min(2 * pauses, kLongestPause);
        if (word.load(std::memory_order_relaxed) == 0 &&
            word.exchange(1, std::memory_order_acquire) == 0)
            return;
    }
}

} // namespace Tq
