#include "OS/Shared/FreeRanges.h"

#include <iterator>
#include <new>
#include <utility>

namespace Tq {

namespace {

// Up to about these many, walking is faster than keeping the index. Apart, so that a number that
// swings about the threshold does not build the index again and again.
constexpr std::size_t kIndexFrom = 32;
constexpr std::size_t kWalkBelow = 16;

} // namespace

FreeRanges::const_iterator FreeRanges::bestFit(std::uint64_t size) const
{
    if (!indexed_)
        return bestByWalking(size);
    const auto best = bySize_.lower_bound(MemAlloc{nullptr, size});
    return best == bySize_.end() ? end() : byAddress_.find(best->addr);
}

FreeRanges::const_iterator FreeRanges::bestByWalking(std::uint64_t size) const
{
    auto best = end();
    for (auto range = begin(); range != end(); ++range) {
        if (range->size < size || (best != end() && range->size >= best->size))
            continue;
        best = range;
        if (range->size == size)
            break;
    }
    return best;
}

void FreeRanges::takeFront(const_iterator range, std::uint64_t size) noexcept
{
    if (size == range->size)
        forget(range);
    else
        change(range, MemAlloc{range->addr + size, range->size - size});
}

FreeRanges::const_iterator FreeRanges::putBack(Node&& node) noexcept
{
    MemAlloc range = node.value();
    if (range.size == 0)
        return end();
    const auto next = byAddress_.lower_bound(range.addr);
    const bool touchesNext = next != end() && next->addr == range.end();
    if (next != begin()) {
        const auto previous = std::prev(next);
        if (previous->end() == range.addr) {
            range = MemAlloc{previous->addr, previous->size + range.size};
            if (touchesNext) {
                range.size += next->size;
                forget(next);
            }
            change(previous, range);
            return previous;
        }
    }
    if (touchesNext) {
        range.size += next->size;
        change(next, range);
        return next;
    }
    const auto added = byAddress_.insert(next, std::move(node));
    indexNew(range);
    return added;
}

// The order by address stays: the range grows or shrinks within its own place.
void FreeRanges::change(const_iterator range, const MemAlloc& to) noexcept
{
    if (indexed_) {
        auto node = bySize_.extract(*range);
        node.value() = to;
        bySize_.insert(std::move(node));
    }
    const_cast<MemAlloc&>(*range) = to;
}

void FreeRanges::indexNew(const MemAlloc& range) noexcept
{
    if (!indexed_) {
        if (byAddress_.size() >= kIndexFrom)
            buildIndex();
        return;
    }
    try {
        bySize_.insert(range);
    } catch (const std::bad_alloc&) {
        dropIndex();
    }
}

void FreeRanges::forget(const_iterator range) noexcept
{
    if (indexed_)
        bySize_.erase(*range);
    byAddress_.erase(range);
    if (indexed_ && byAddress_.size() < kWalkBelow)
        dropIndex();
}

void FreeRanges::buildIndex() noexcept
{
    try {
        bySize_.insert(byAddress_.begin(), byAddress_.end());
        indexed_ = true;
    } catch (const std::bad_alloc&) {
        dropIndex();
    }
}

void FreeRanges::dropIndex() noexcept
{
    bySize_.clear();
    indexed_ = false;
}

} // namespace Tq
