#pragma once

#include <OS/Core/Export.h>

#include <cstddef>
#include <cstdint>

class iReclaimable;

/// A heap: blocks, whole pages of virtual memory, and a registry of caches that can give memory
/// back.
///
/// OS()->heap() is the root's; the global `operator new` and `operator delete` go through it.
/// Blocks may be allocated and released from any thread, pages too. The registry takes no lock:
/// register and deregister from one thread, or before other threads call reclaim, limitUsage or
/// report. Nothing here throws, but for what Tq::MTHeap says of its blocks.
class OS_API iHeap
{
public:
    static constexpr std::size_t kMemAlignment = 16;
    static constexpr std::size_t kMemAlignmentLarge = 16;

    enum eAllocationType : std::uint32_t
    {
        eMemCommit = 0x1000,        ///< make reserved pages readable and writable
        eMemReserve = 0x2000,       ///< reserve address space without access
        eMemReserveCommit = 0x3000, ///< both in one step
        eMemDecommit = 0x4000,      ///< give the pages back, keep the range reserved
        eMemRelease = 0xC000        ///< unmap the range
    };

    /// Accepted and ignored: pages are always readable and writable. Callers pass this value.
    enum eProtectFlags : std::uint32_t
    {
        eProtectReadWrite = 4
    };

    virtual ~iHeap() = default;

    /// @return a block of `size` bytes, or null when there is no memory
    virtual void* alloc(std::size_t size) = 0;
    /// Resizes a block, moving it where needed; a null block is a new one.
    /// @return null when there is no memory: the old block is then untouched
    virtual void* reAlloc(void* block, std::size_t size) = 0;
    /// Releases a block; null is ignored.
    virtual void deAlloc(void* block) = 0;

    /// Maps or commits pages.
    ///
    /// @param address eMemCommit: where, rounded down to a page; eMemReserve: a hint;
    /// eMemReserveCommit:
    ///                exactly where (replacing what is mapped there), or null for anywhere
    /// @param length bytes
    /// @return eMemCommit: `address` as given, or null on failure. eMemReserve and
    /// eMemReserveCommit: what
    ///         mmap returned; on failure that is all bits set and not null, deliberately. Any other
    ///         type prints the assertion report for "allocationType == eMemCommit" at
    ///         "OS/Shared/Heap line 112" and gives null.
    virtual void* virtualAlloc(void* address, std::size_t length, eAllocationType type,
                               eProtectFlags protect) = 0;

    /// Decommits or unmaps pages.
    ///
    /// An address that is not at a page prints the assertion report for "(size_t) mem % pageSize_
    /// == 0" at "OS/Shared/Heap line 122" and the operation goes on. A refused decommit prints the
    /// reports for "chunk1 == mem" (line 130) and "chunk2 == mem" (line 133). Any other type, or a
    /// refused unmap, prints "virtualDealloc failed (%d)" with errno (no newline) and the report
    /// for "false" (line 146).
    virtual void virtualDeAlloc(void* address, std::uint32_t length, eAllocationType type) = 0;

    /// Appends a cache, which is not owned; the same one may be registered more than once.
    virtual void registerReclaimable(iReclaimable* cache) = 0;
    /// Removes the first entry of this cache; an absent one is ignored.
    virtual void deRegisterReclaimable(iReclaimable* cache) = 0;
    /// Calls every cache's reportUsage(), first to last, each followed by a timed separator line.
    virtual void report() = 0;
    /// Calls every cache's purge(), first to last.
    virtual void reclaim() = 0;
    /// Calls every cache's limitUsage(), first to last.
    virtual void limitUsage() = 0;
    /// A check that only some heaps can make; the root's answers true for anything.
    virtual bool isPointerValid(const void* block) const = 0;
    /// True while an allocation of any heap is being retried because the system refused memory. A
    /// hint.
    virtual bool outOfMemory() const = 0;
};
