#include <OS/Shared/MTHeap.h>

#include "OS/Shared/BinLists.h"
#include "OS/Shared/ForkGuarded.h"
#include "OS/Shared/TqLargeObjectHeap.h"

#include "OS/Mac/Core/Assertion.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <mutex>
#include <new>
#include <sys/mman.h>

namespace Tq {

namespace {

using AllocHeader = std::uint32_t; // the size that the caller last asked for

constexpr std::size_t kBinnedLimit = MTHeap::kBinMaxSize - sizeof(AllocHeader);
constexpr std::size_t kLargeBlockOffset = 16; // from a large block to what the caller gets
constexpr unsigned int kRetryPauseMs = 10;
constexpr std::size_t kLargestAddressSpace = std::size_t(1) << 47; // what a process may map unasked

static_assert(MTHeap::getBinFreeSize(MTHeap::kBinCount - 1) == kBinnedLimit);
static_assert(MTHeap::getBinIndexFromSize(kBinnedLimit) == MTHeap::kBinCount - 1);
static_assert(MTHeap::getBinIndexFromSize(kBinnedLimit + 1) == MTHeap::kNoBin);
static_assert(MTHeap::getBinIndexFromSize(std::numeric_limits<std::size_t>::max()) ==
              MTHeap::kNoBin);

std::uintptr_t addressOf(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

std::byte* headerOf(void* block)
{
    return static_cast<std::byte*>(block) - sizeof(AllocHeader);
}

AllocHeader readSize(void* block)
{
    AllocHeader size;
    std::memcpy(&size, headerOf(block), sizeof size);
    return size;
}

void writeSize(void* block, AllocHeader size)
{
    std::memcpy(headerOf(block), &size, sizeof size);
}

// The header of a large block has to tell that it is one, whatever the low bits of its size are.
void writeLargeSize(void* block, std::size_t size)
{
    writeSize(block, std::max(static_cast<AllocHeader>(size), AllocHeader(kBinnedLimit + 1)));
}

void* largeBlockOf(void* block)
{
    return static_cast<std::byte*>(block) - kLargeBlockOffset;
}

// @return the block, so that the usual way ends in a jump
[[gnu::noinline]] void* reportMisalignedResult(void* block)
{
    OSInternal::reportAssertion("((size_t) mem & (iHeap::kMemAlignment - 1)) == kHeaderOffset",
                                "OS/Shared/TqHeap_MultiThreaded line 196");
    OSInternal::reportAssertion("((size_t) mem & (iHeap::kMemAlignment - 1)) == 0",
                                "OS/Shared/TqHeap_MultiThreaded line 200");
    return block;
}

[[gnu::cold, gnu::noinline]] void reportMisalignedArgument()
{
    OSInternal::reportAssertion("((size_t) mem & (iHeap::kMemAlignment - 1)) == 0",
                                "OS/Shared/TqHeap_MultiThreaded line 213");
}

[[noreturn, gnu::cold, gnu::noinline]] void refuseRelease()
{
    throw Exception::RuntimeError("Attempt to free invalid pointer (invalid alignment)",
                                  "OS/Shared/TqHeap_MultiThreaded", 228);
}

bool isAligned(const void* block)
{
    return (addressOf(block) & (iHeap::kMemAlignment - 1)) == 0;
}

void* blockAt(std::byte* header, std::size_t size)
{
    void* block = header + sizeof(AllocHeader);
    writeSize(block, static_cast<AllocHeader>(size));
    return isAligned(block) ? block : reportMisalignedResult(block);
}

void checkArgument(const void* block)
{
    if (!isAligned(block)) [[unlikely]]
        reportMisalignedArgument();
}

} // namespace

/// The bins' virtual memory, and what the heap's locks do around a fork.
class MTHeap::Memory final : public ForkGuarded
{
public:
    Memory() { vmemLock_.setRank(OSInternal::LockRank::eHeapVirtualMemory); }
    ~Memory()
    {
        for (void* region : regions_)
            munmap(region, kRegionSize);
    }

    using ForkGuarded::enrol;
    using ForkGuarded::withdraw;

    void lockForFork() override
    {
        bins_.lockForFork();
        Tq::lockForFork(vmemLock_);
    }
    void unlockAfterFork() override
    {
        vmemLock_.unlock();
        bins_.unlockAfterFork();
    }
    void renewInChild() override
    {
        Tq::renewInChild(vmemLock_, OSInternal::LockRank::eHeapVirtualMemory);
        bins_.renewInChild();
    }

    OSInternal::CriticalSection& vmemLock() { return vmemLock_; }
    BinLists<BinLocks>& bins() { return bins_; }

    // A region that starts at a chunk's boundary gives up its whole first chunk, deliberately.
    void add(std::byte* region)
    {
        const std::lock_guard lock(vmemLock_);
        regions_.push_back(region);
        chunkCursor_ = region + (kChunkSize - addressOf(region) % kChunkSize);
        chunkRemaining_ = static_cast<std::size_t>(region + kRegionSize - chunkCursor_);
    }
    bool hasChunk() const { return chunkRemaining_ >= kChunkSize; }
    std::byte* takeChunk()
    {
        std::byte* chunk = chunkCursor_;
        chunkCursor_ += kChunkSize;
        chunkRemaining_ -= kChunkSize;
        return chunk;
    }

private:
    BinLists<BinLocks> bins_;
    OSInternal::CriticalSection vmemLock_{0};
    std::byte* chunkCursor_ = nullptr;
    std::size_t chunkRemaining_ = 0;
    std::vector<void*, ProcessHeapAllocator<void*>> regions_;
};

MTHeap::MTHeap() : memory_(std::make_unique<Memory>())
{
    getMoreVmem();
    memory_->enrol();
}

MTHeap::~MTHeap()
{
    memory_->withdraw();
}

void* MTHeap::alloc(std::size_t size)
{
    if (size > kBinnedLimit) [[unlikely]]
        return allocLarge(size);

    std::byte* header = memory_->bins().tryPop(getBinIndexFromSize(size));
    if (!header) [[unlikely]]
        return allocBinned(size);
    return blockAt(header, size);
}

void* MTHeap::allocBinned(std::size_t size)
{
    const std::uint32_t bin = getBinIndexFromSize(size);
    std::byte* header = memory_->bins().pop(bin);
    if (!header)
        header = getMoreMemoryForBin(bin);
    return blockAt(header, size);
}

void MTHeap::deAlloc(void* block)
{
    if (!block)
        return;
    if (!isAligned(block)) [[unlikely]]
        return deAllocMisaligned(block);
    release(block);
}

void MTHeap::deAllocMisaligned(void* block)
{
    reportMisalignedArgument();
    release(block);
}

inline void MTHeap::release(void* block)
{
    const AllocHeader size = readSize(block);
    if (size > kBinnedLimit) [[unlikely]]
        return deAllocLarge(block);

    const std::uint32_t index = getBinIndexFromSize(size);
    std::byte* header = headerOf(block);
    const auto placeInChunk = static_cast<std::uint32_t>(addressOf(header) % kChunkSize);
    if (placeInChunk % static_cast<std::uint32_t>(getBinMaxSize(index)) != kHeaderOffset)
        [[unlikely]]
        refuseRelease();

    if (!memory_->bins().tryPush(index, header)) [[unlikely]]
        memory_->bins().push(index, header);
}

void MTHeap::deAllocLarge(void* block)
{
    if (!isAligned(block))
        OSInternal::reportAssertion(
            "((size_t) ptr & (iHeap::kMemAlignmentLarge - 1)) == kHeaderOffsetLarge",
            "OS/Shared/TqHeap_MultiThreaded line 243");
    LargeObjectHeap::instance().Free(largeBlockOf(block));
}

void* MTHeap::reAlloc(void* block, std::size_t size)
{
    if (!block)
        return alloc(size);
    checkArgument(block);
    const AllocHeader oldSize = readSize(block);
    return oldSize <= kBinnedLimit ? resizeBinned(block, oldSize, size) : resizeLarge(block, size);
}

void* MTHeap::resizeBinned(void* block, std::uint32_t oldSize, std::size_t newSize)
{
    const std::uint32_t bin = getBinIndexFromSize(oldSize);
    if (newSize <= getBinFreeSize(bin)) {
        // Releasing finds the bin by the size.
        const std::size_t smallest = bin == 0 ? 0 : getBinFreeSize(bin - 1) + 1;
        writeSize(block, static_cast<AllocHeader>(std::max(newSize, smallest)));
        return block;
    }
    void* moved = alloc(newSize);
    std::memcpy(moved, block, oldSize);
    try {
        deAlloc(block);
    } catch (...) {
        deAlloc(moved);
        throw;
    }
    return moved;
}

void* MTHeap::resizeLarge(void* block, std::size_t newSize)
{
    LargeObjectHeap& largeObjects = LargeObjectHeap::instance();
    if (newSize <= kBinMaxSize) {
        // The large-object heap rounds up: the copy stays inside a block of 32765 bytes, too.
        void* moved = alloc(newSize);
        std::memcpy(moved, block, newSize);
        largeObjects.Free(largeBlockOf(block));
        return moved;
    }
    if (newSize > kLargestAddressSpace)
        return nullptr;
    void* large = largeObjects.Realloc(largeBlockOf(block), newSize + kLargeBlockOffset);
    if (!large)
        return nullptr;
    void* resized = static_cast<std::byte*>(large) + kLargeBlockOffset;
    writeLargeSize(resized, newSize);
    return isAligned(resized) ? resized : reportMisalignedResult(resized);
}

void* MTHeap::allocLarge(std::size_t size)
{
    if (size > std::numeric_limits<std::size_t>::max() - kLargeBlockOffset)
        throw std::bad_alloc();
    void* large = LargeObjectHeap::instance().Alloc(size + kLargeBlockOffset);
    if (!isAligned(large))
        OSInternal::reportAssertion("((size_t) mem & (kMemAlignmentLarge - 1)) == 0",
                                    "OS/Shared/TqHeap_MultiThreaded line 188");
    void* block = static_cast<std::byte*>(large) + kLargeBlockOffset;
    writeLargeSize(block, size);
    return isAligned(block) ? block : reportMisalignedResult(block);
}

void MTHeap::getMoreVmem()
{
    void* region;
    while (!(region = virtualAlloc(nullptr, kRegionSize, eMemReserveCommit, eProtectReadWrite))) {
        outOfMemory_.store(true, std::memory_order_relaxed);
        OS()->threadMgr()->sleep(kRetryPauseMs);
    }
    outOfMemory_.store(false, std::memory_order_relaxed);
    if (region == MAP_FAILED) // not null, deliberately: not waited for
        throw std::bad_alloc();
    try {
        memory_->add(static_cast<std::byte*>(region));
    } catch (...) {
        munmap(region, kRegionSize);
        throw;
    }
}

std::byte* MTHeap::getAlignedChunk()
{
    const std::lock_guard lock(memory_->vmemLock());
    if (!memory_->hasChunk())
        getMoreVmem(); // takes the lock again
    return memory_->takeChunk();
}

// @return the header of a block; the others go to the thread's list.
std::byte* MTHeap::getMoreMemoryForBin(std::uint32_t bin)
{
    const std::size_t stride = getBinMaxSize(bin);
    std::byte* first = getAlignedChunk() + kHeaderOffset;
    memory_->bins().pushRun(bin, first + stride, (kChunkSize - iHeap::kMemAlignment) / stride - 1);
    return first;
}

void MTHeap::report()
{
    Heap::report();
    LargeObjectHeap::instance().reportUsage();
}

bool MTHeap::isPointerValid(const void*) const
{
    return true;
}

void* MTHeap::osAlloc(std::size_t size)
{
    if (size > kLargestAddressSpace)
        throw std::bad_alloc();
    void* block;
    while (!(block = std::malloc(size ? size : 1))) {
        outOfMemory_.store(true, std::memory_order_relaxed);
        OS()->threadMgr()->sleep(kRetryPauseMs);
    }
    if (outOfMemory_.load(std::memory_order_relaxed))
        outOfMemory_.store(false, std::memory_order_relaxed);
    return block;
}

void* MTHeap::osRealloc(void* block, std::size_t size)
{
    return std::realloc(block, size);
}

void MTHeap::osFree(void* block)
{
    std::free(block);
}

} // namespace Tq
