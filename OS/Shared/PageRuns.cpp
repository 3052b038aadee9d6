#include "OS/Shared/PageRuns.h"

#include <iterator>

namespace Tq {

PageRuns::PageRuns(std::uint32_t pageCount)
{
    if (pageCount > 0)
        insert(0, pageCount);
}

std::optional<std::uint32_t> PageRuns::take(std::uint32_t count)
{
    const auto found = byLength_.lower_bound({count, 0});
    if (found == byLength_.end())
        return std::nullopt;
    const auto [length, first] = *found;
    if (length > count)
        insert(first + count, length - count);
    erase(first, length);
    return first;
}

void PageRuns::giveBack(std::uint32_t first, std::uint32_t count)
{
    std::uint32_t begin = first;
    std::uint32_t end = first + count;
    const auto after = byFirst_.lower_bound(first);
    if (after != byFirst_.end() && after->first == end)
        end += after->second;
    if (after != byFirst_.begin()) {
        const auto before = std::prev(after);
        if (before->first + before->second == begin)
            begin = before->first;
    }
    // The new run may stand in for its lower neighbour: then only its length changes.
    byLength_.insert({end - begin, begin});
    try {
        const auto [run, isNew] = byFirst_.insert({begin, end - begin});
        if (!isNew) {
            byLength_.erase({run->second, begin});
            run->second = end - begin;
        }
    } catch (...) {
        byLength_.erase({end - begin, begin});
        throw;
    }
    if (end > first + count)
        erase(first + count, end - first - count);
}

void PageRuns::insert(std::uint32_t first, std::uint32_t count)
{
    byLength_.insert({count, first});
    try {
        byFirst_.insert({first, count});
    } catch (...) {
        byLength_.erase({count, first});
        throw;
    }
}

void PageRuns::erase(std::uint32_t first, std::uint32_t count)
{
    byLength_.erase({count, first});
    byFirst_.erase(first);
}

} // namespace Tq
