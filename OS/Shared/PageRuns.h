#pragma once

#include <OS/Shared/ProcessHeapAllocator.h>

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <utility>

namespace Tq {

/// Which pages of a range are free, as runs that are as long as they can be. Its own storage comes
/// from the C allocator; std::bad_alloc leaves it as it was. No lock.
class PageRuns
{
public:
    explicit PageRuns(std::uint32_t pageCount);

    /// Takes the first pages of the shortest run that is long enough, the lowest of several.
    /// @return the first page, or nothing when no run is long enough
    std::optional<std::uint32_t> take(std::uint32_t count);
    void giveBack(std::uint32_t first, std::uint32_t count);

private:
    using Run = std::pair<std::uint32_t, std::uint32_t>;
    template <class T>
    using Allocator = ProcessHeapAllocator<T>;

    void insert(std::uint32_t first, std::uint32_t count);
    void erase(std::uint32_t first, std::uint32_t count);

    std::map<std::uint32_t, std::uint32_t, std::less<>,
             Allocator<std::pair<const std::uint32_t, std::uint32_t>>>
        byFirst_;
    std::set<Run, std::less<>, Allocator<Run>> byLength_;
};

} // namespace Tq
