#pragma once

#include "OS/Shared/ForkGuarded.h"
#include "OS/Shared/FreeRanges.h"

#include <OS/Shared/iHeap.h>

#include <atomic>

namespace Tq {

/// The process's heap for blocks too large for the bins of Tq::MTHeap.
///
/// It reserves one range of address space, hands out pieces of it, commits their pages and gives
/// the whole pages inside a block back to the system when the block is released. What does not fit,
/// and what the system refuses to commit, comes from the C allocator, with the line
/// "No physical memory available, err %d\n", at most once a second.
///
/// The size of the pool is the global setting "VirtualPoolSizeMb" of the section "Configuration", a
/// decimal number of MiB, by default 1048576. It is read when the heap is built, at the first large
/// block, and holds for the process. Nothing, no number, zero, a negative number or a size that the
/// system refuses makes an empty pool.
///
/// A process has about 65,530 maps and a committed block between decommitted ones takes two, so
/// about 32,000 such blocks can live at once; more come from the C allocator.
///
/// Any thread. One lock, a leaf, guards everything; pages are given back outside of it.
class LargeObjectHeap final : private ForkGuarded
{
public:
    /// The process's one, built on first use and never destroyed.
    static LargeObjectHeap& instance();

    /// @param text what the settings hold @return the pool's bytes, 0 for an empty one
    static std::uint64_t poolBytesFrom(const char* text);

    /// For tests, which use heaps of their own. Sets the process's statistics, as instance() does.
    explicit LargeObjectHeap(std::uint64_t poolBytes);
    ~LargeObjectHeap();

    /// @param size a multiple of 16 deliberately grows by 16, too
    /// @return 16-aligned, never null. What finds no memory is waited for; throws std::bad_alloc
    /// for
    ///         a size that no address space could hold.
    void* Alloc(std::uint64_t size);

    /// Releases a block.
    ///
    /// A pointer outside the pool prints "unexpected address for delete at %p\n" and goes to the C
    /// allocator. One inside that is no block prints "double deletion at %p\n" and an assertion.
    ///
    /// The size of a block is deliberately cut to 32 bits here: of one of 4 GiB or more, only the
    /// front comes back to the pool. The rest is neither free nor used for the life of the process,
    /// and stays committed; reportUsage() then prints the difference.
    void Free(void* block);

    /// Grows a block, in its place where the free range behind it allows. A block never shrinks.
    /// @return null, with the block unchanged, when the system refuses to commit or has no memory;
    /// for a
    ///         pointer inside the pool that is no block, "realloc alert!\n" is printed, too
    void* Realloc(void* block, std::uint64_t size);

    /// @return the rounded size of a block of the pool, 0 for anything else
    std::uint64_t Size(const void* block) const;
    /// @return whether this is a block of the pool
    bool Validate(const void* block) const;
    /// Prints "%dMb in pool size %d, %dMb used size %d\n", before it, only when the sums do not add
    /// up, "free+used %d, total %d, diff %d\n". Byte counts are deliberately cut to 32 bits before
    /// they are divided.
    void reportUsage() const;
    /// Does nothing.
    void debugChecks() const {}

    /// White-box view for tests; no other thread may use the heap meanwhile.
    const FreeRanges& freePool() const { return freePool_; }
    const std::byte* memBase() const { return memBase_; }
    const std::byte* memCommit() const { return memCommit_; }

private:
    void lockForFork() override;
    void unlockAfterFork() override;
    void renewInChild() override;

    void* takeFromPool(std::uint64_t rounded);
    void* takeFromSystem(std::uint64_t size, int error);
    bool commit(std::byte* from, std::uint64_t size);
    void decommitUnused(const MemAlloc& range);
    bool growInPlace(RangesByAddress::iterator block, std::uint64_t size, bool& refused);
    bool isInPool(const void* address) const;
    void countUsed(std::uint64_t bytes, bool more);

    mutable OSInternal::CriticalSection lock_{0};
    iHeap* const pages_;
    FreeRanges freePool_;
    RangesByAddress usedPool_;
    std::byte* memBase_ = nullptr;
    std::byte* memLimit_ = nullptr;
    std::byte* memCommit_ = nullptr; // the end of what is committed, as far as it is tracked
    std::uint64_t memUsed_ = 0;
    std::uint64_t memDecommitting_ = 0; // of blocks on their way from used to free
    std::atomic<std::int64_t> lastComplaintNs_;
};

} // namespace Tq
