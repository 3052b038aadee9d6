#include "OS/Shared/ThreadsList.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>

namespace Tq {

namespace {

constinit std::array<std::atomic<std::uint32_t>, ThreadsList::kCount> livingThreads{};

// What a thread frees while it ends still goes to its list.
struct Membership
{
    std::uint32_t index;
    ~Membership() { livingThreads[index].fetch_sub(1, std::memory_order_relaxed); }
};

} // namespace

constinit thread_local std::uint32_t ThreadsList::index_ =
    std::numeric_limits<std::uint32_t>::max();

std::uint32_t ThreadsList::deal()
{
    const auto fewest = std::min_element(livingThreads.begin(), livingThreads.end());
    fewest->fetch_add(1, std::memory_order_relaxed);
    index_ = static_cast<std::uint32_t>(fewest - livingThreads.begin());
    static thread_local const Membership membership{index_};
    return index_;
}

} // namespace Tq
