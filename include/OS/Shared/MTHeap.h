#pragma once

#include <OS/Shared/Heap.h>

#include <cstddef>
#include <cstdint>
#include <memory>

namespace Tq {

/// A heap for many threads at once.
///
/// Blocks of up to 32764 bytes come from 2048 bins, one for every 16 bytes of size, each with
/// locks and lists of free blocks of its own; larger ones come from the large-object heap, which
/// all heaps share. A released block is at once the next one of its bin for the thread that
/// released it; other threads take over what it has to spare before the bin gets more memory.
/// Memory of the bins goes back to the system only with the heap, so a heap that lives as long as a
/// task is a good way to hold a task's memory together.
///
/// Every block is 16-byte aligned and follows 4 bytes that hold its size. They are not for callers:
/// a released block's are overwritten, a block of 4 GiB or more keeps the low 32 bits only, and
/// one that shrank keeps no less than the smallest size of its bin.
///
/// Blocks may be allocated, resized and released by any thread, also by another than the one that
/// allocated them, but only through the heap they came from. A child made by fork() can use every
/// heap. Locks: a bin's, or the heap's for virtual memory; none while large blocks are handled.
/// Derive from it only to replace virtualAlloc.
class OS_API MTHeap : public Heap
{
public:
    static constexpr std::size_t kHeaderOffset = 12;      ///< of a header, modulo 16
    static constexpr std::size_t kHeaderOffsetLarge = 12; ///< the same for large blocks
    static constexpr std::size_t kBinMaxSize = 32768;
    static constexpr std::size_t kBinCount = 2048;
    static constexpr std::size_t kChunkSize = 65536; ///< a bin's blocks lie in aligned chunks
    static constexpr std::size_t kRegionSize = 4194304;
    static constexpr std::uint32_t kNoBin = 65535;

    /// Maps the first region. Throws std::bad_alloc when the system refuses it.
    MTHeap();
    /// Unmaps the bins' memory, whatever is still allocated. Large blocks stay allocated.
    ~MTHeap() override;

    /// @param size may be 0
    /// @return never null. Throws std::bad_alloc when the system refuses a region or when no
    /// address
    ///         space could ever hold the block; a large block that merely finds no memory now is
    ///         waited for, with outOfMemory() true meanwhile.
    void* alloc(std::size_t size) override;

    /// Resizes a block, moving it only where it must.
    ///
    /// A block of a bin never moves when it shrinks. A large block that shrinks to 32768 bytes or
    /// less always moves, and comes from the large-object heap again above 32764; deliberate.
    ///
    /// @return null when a large block cannot grow: the old one is then untouched, as it is when
    ///         this throws what alloc throws
    void* reAlloc(void* block, std::size_t size) override;

    /// Releases a block; null is ignored.
    ///
    /// Throws Tq::Exception::RuntimeError "Attempt to free invalid pointer (invalid alignment)",
    /// the heap unharmed, when the 4 bytes before the pointer and its place cannot belong to one
    /// block. Those bytes must be readable.
    void deAlloc(void* block) override;

    /// Heap::report(), then the usage of the large-object heap.
    void report() override;
    /// True for anything.
    bool isPointerValid(const void* block) const override;

    /// @return the bin for a request, kNoBin for one that is too large
    static constexpr std::uint32_t getBinIndexFromSize(std::size_t size)
    {
        return size < kBinMaxSize - sizeof(std::uint32_t) + 1
                   ? static_cast<std::uint32_t>((size + 3) >> 4)
                   : kNoBin;
    }
    /// @return the largest request that a bin serves
    static constexpr std::size_t getBinFreeSize(std::uint32_t bin) { return bin * 16u + 12u; }
    /// For information: deliberately not the smallest request, which is 16 * bin - 3.
    static constexpr std::size_t getBinMinSize(std::uint32_t bin) { return bin * 16u + 1u; }
    /// @return the distance of a bin's blocks
    static constexpr std::size_t getBinMaxSize(std::uint32_t bin) { return bin * 16u + 16u; }

    /// malloc, tried again every 10 ms until it succeeds, with outOfMemory() true meanwhile.
    /// @return never null. Throws std::bad_alloc for a size that no address space could hold.
    static void* osAlloc(std::size_t size);
    /// realloc.
    static void* osRealloc(void* block, std::size_t size);
    /// free.
    static void osFree(void* block);

private:
    class [[gnu::visibility("hidden")]] Memory;

    void getMoreVmem();
    std::byte* getAlignedChunk();
    std::byte* getMoreMemoryForBin(std::uint32_t bin);

    // Out of line, so that the usual way saves no registers.
    [[gnu::noinline]] void* allocBinned(std::size_t size);
    [[gnu::noinline]] void* allocLarge(std::size_t size);
    [[gnu::noinline]] void deAllocLarge(void* block);
    [[gnu::noinline]] void deAllocMisaligned(void* block);
    void release(void* block);
    void* resizeBinned(void* block, std::uint32_t oldSize, std::size_t newSize);
    void* resizeLarge(void* block, std::size_t newSize);

    std::unique_ptr<Memory> memory_;
};

} // namespace Tq
