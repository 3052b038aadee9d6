#pragma once

#include <OS/Shared/ProcessHeapAllocator.h>

#include <cstddef>
#include <cstdint>
#include <set>

namespace Tq {

/// A range of the large-object heap's pool, free or handed out.
struct MemAlloc
{
    std::byte* addr;
    std::uint64_t size;

    std::byte* end() const { return addr + size; }
};

/// Ranges by address. They never overlap, so a range may grow or shrink in its place.
struct compT
{
    using is_transparent = void;
    bool operator()(const MemAlloc& a, const MemAlloc& b) const { return a.addr < b.addr; }
    bool operator()(const MemAlloc& a, const std::byte* b) const { return a.addr < b; }
    bool operator()(const std::byte* a, const MemAlloc& b) const { return a < b.addr; }
};
using RangesByAddress = std::set<MemAlloc, compT, ProcessHeapAllocator<MemAlloc>>;

/// The free ranges of the pool, no two of which touch, and the best fit among them.
///
/// A few ranges are walked; many have a second index by size and address, which makes the same
/// choice. The index is only an aid: where there is no memory for it, ranges are walked again. A
/// released range comes with its node, so nothing but a first range allocates, and nothing throws.
class FreeRanges
{
public:
    using Node = RangesByAddress::node_type;
    using const_iterator = RangesByAddress::const_iterator;

    /// Puts in the first range; may throw std::bad_alloc.
    void start(const MemAlloc& range) { byAddress_.insert(range); }

    /// @return the smallest range that holds `size` bytes, the lowest among equals; end() for none
    const_iterator bestFit(std::uint64_t size) const;
    /// @return the range that begins at an address; end() for none
    const_iterator beginningAt(const std::byte* address) const { return byAddress_.find(address); }

    /// Takes the front of a range, or the whole of it.
    void takeFront(const_iterator range, std::uint64_t size) noexcept;
    /// Puts a range back, merged with the neighbours that it touches. An empty one vanishes.
    /// @return the merged range; end() for an empty one
    const_iterator putBack(Node&& node) noexcept;

    const_iterator begin() const { return byAddress_.begin(); }
    const_iterator end() const { return byAddress_.end(); }
    std::size_t size() const { return byAddress_.size(); }

private:
    struct BySize
    {
        bool operator()(const MemAlloc& a, const MemAlloc& b) const
        {
            return a.size != b.size ? a.size < b.size : a.addr < b.addr;
        }
    };
    using SizeIndex = std::set<MemAlloc, BySize, ProcessHeapAllocator<MemAlloc>>;

    const_iterator bestByWalking(std::uint64_t size) const;
    void change(const_iterator range, const MemAlloc& to) noexcept;
    void indexNew(const MemAlloc& range) noexcept;
    void forget(const_iterator range) noexcept;
    void buildIndex() noexcept;
    void dropIndex() noexcept;

    RangesByAddress byAddress_;
    SizeIndex bySize_;
    bool indexed_ = false;
};

} // namespace Tq
