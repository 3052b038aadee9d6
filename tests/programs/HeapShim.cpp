// Serves an unmodified program's allocations from a Tq::MTHeap. To be preloaded (LD_PRELOAD); at
// its exit each process adds a line of counts to $HEAP_SHIM_TO, unless that variable is unset:
//
//     NAME heap N c N before N own N peak BYTES
//
// the calls that the heap served and those that the C allocator did: of the program, of anybody
// before the heap was made, and of this project's library itself; and the most bytes that the
// program had of the heap at once.
//
// The program's calls that the C allocator serves are those of a forked child, those after this
// library's destructor, blocks of about 4 GiB and more, and what is done to a block that came from
// there. A block goes back to where it came from, whoever releases it.

#include "BlockMap.h"
#include "CAllocator.h"

#include <OS.h>
#include <OS/Shared/MTHeap.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <new>
#include <pthread.h>
#include <unistd.h>

namespace {

using CAllocator::kAlignment;

// What stands before every block. The heap itself writes the size, and never kAligned there; before
// a block that it made, the rest is the neighbour's.
struct Lead
{
    std::uint32_t distance; // of an aligned block from the one that it lies in
    std::uint32_t alignedSize;
    std::uint32_t size;
};

constexpr std::uint32_t kAligned = 0xffffffff;
constexpr std::size_t kMostBytes = 0xffff0000; // 4 GiB, less what the heap may add
constexpr std::size_t kLargeBlock = 4 * Tq::MTHeap::kBinMaxSize;

alignas(Tq::MTHeap) constinit std::byte heapStorage[sizeof(Tq::MTHeap)] = {};
constinit Tq::MTHeap* heap = nullptr; // never destroyed: blocks outlive whatever could do it
constinit BlockMap blocks;
constinit std::atomic<bool> started{false};
constinit std::atomic<bool> serving{false};
constinit std::atomic<bool> isForkedChild{false};
[[gnu::tls_model("initial-exec")]] constinit thread_local int insideLibrary = 0;

struct Counts
{
    std::atomic<std::uint64_t> heap, c, before, own;
    std::atomic<std::uint64_t> bytes, peak;
};
constinit Counts counts = {};

void add(std::atomic<std::uint64_t>& count)
{
    count.fetch_add(1, std::memory_order_relaxed);
}

void countInC()
{
    if (insideLibrary > 0)
        add(counts.own);
    else
        add(started.load(std::memory_order_relaxed) ? counts.c : counts.before);
}

void countBytes(std::size_t more)
{
    const std::uint64_t bytes = counts.bytes.fetch_add(more, std::memory_order_relaxed) + more;
    std::uint64_t peak = counts.peak.load(std::memory_order_relaxed);
    while (peak < bytes &&
           !counts.peak.compare_exchange_weak(peak, bytes, std::memory_order_relaxed)) {
    }
}

/// While one is there, what this thread allocates is the library's own.
class InsideLibrary
{
public:
    InsideLibrary() { ++insideLibrary; }
    InsideLibrary(const InsideLibrary&) = delete;
    InsideLibrary& operator=(const InsideLibrary&) = delete;
    ~InsideLibrary()
    {
        --insideLibrary;
        errno = error_;
    }

private:
    const int error_ = errno;
};

bool isServed(std::size_t size)
{
    return size <= kMostBytes && insideLibrary == 0 && serving.load(std::memory_order_acquire);
}

Lead leadOf(const void* block)
{
    Lead lead;
    std::memcpy(&lead, static_cast<const std::byte*>(block) - sizeof lead, sizeof lead);
    return lead;
}

std::size_t sizeOf(const Lead& lead)
{
    return lead.size == kAligned ? lead.alignedSize : lead.size;
}

void* orNoMemory(void* block)
{
    if (!block)
        errno = ENOMEM;
    return block;
}

// @return null when there is no memory
void* resizeInHeap(void* block, std::size_t size)
{
    const InsideLibrary inside;
    try {
        return heap->reAlloc(block, size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void* makeInHeap(std::size_t size)
{
    void* block = resizeInHeap(nullptr, size);
    if (block) {
        blocks.add(block);
        add(counts.heap);
        countBytes(sizeOf(leadOf(block)));
    }
    return orNoMemory(block);
}

// The block lies inside a longer one, which has room for its lead, too.
void* makeAlignedInHeap(std::size_t alignment, std::size_t size)
{
    void* outer = resizeInHeap(nullptr, size + alignment);
    if (!outer)
        return orNoMemory(outer);
    const auto start = reinterpret_cast<std::uintptr_t>(outer);
    const std::size_t distance = alignment - start % alignment;
    std::byte* block = static_cast<std::byte*>(outer) + distance;
    const Lead lead = {static_cast<std::uint32_t>(distance), static_cast<std::uint32_t>(size),
                       kAligned};
    std::memcpy(block - sizeof lead, &lead, sizeof lead);
    blocks.add(block);
    add(counts.heap);
    countBytes(size);
    return block;
}

void releaseInHeap(void* block)
{
    const InsideLibrary inside;
    const Lead lead = leadOf(block);
    blocks.remove(block);
    add(counts.heap);
    counts.bytes.fetch_sub(sizeOf(lead), std::memory_order_relaxed);
    heap->deAlloc(lead.size == kAligned ? static_cast<std::byte*>(block) - lead.distance : block);
}

void* resizeServed(void* block, std::size_t size)
{
    const std::size_t oldSize = sizeOf(leadOf(block));
    blocks.remove(block);
    void* resized = resizeInHeap(block, size);
    blocks.add(resized ? resized : block);
    if (!resized)
        return orNoMemory(resized);
    add(counts.heap);
    counts.bytes.fetch_sub(oldSize, std::memory_order_relaxed);
    countBytes(sizeOf(leadOf(resized)));
    return resized;
}

void* moveBlock(void* block, std::size_t size)
{
    void* moved = malloc(size);
    if (moved) {
        std::memcpy(moved, block, std::min(size, sizeOf(leadOf(block))));
        free(block);
    }
    return moved;
}

// Outside of the library's, which lock the heap and unlock it: what is allocated meanwhile must not
// ask the heap.
void beforeFork()
{
    ++insideLibrary;
}
void inParent()
{
    --insideLibrary;
}
void inChild()
{
    isForkedChild.store(true, std::memory_order_relaxed);
    serving.store(false, std::memory_order_relaxed);
    --insideLibrary;
}

// The root and the large-object heap are made here, so that no call of the program's finds them
// half made.
[[gnu::constructor]] void start()
{
    const InsideLibrary inside;
    if (!blocks.reserve() || pthread_atfork(&beforeFork, &inParent, &inChild) != 0)
        return;
    CAllocator::usableSize(nullptr);
    try {
        OS();
        heap = new (heapStorage) Tq::MTHeap;
        heap->deAlloc(heap->alloc(kLargeBlock));
    } catch (const std::bad_alloc&) {
        return;
    }
    serving.store(true, std::memory_order_release);
    started.store(true, std::memory_order_relaxed);
}

[[gnu::destructor]] void finish()
{
    serving.store(false, std::memory_order_relaxed);
    const char* path = std::getenv("HEAP_SHIM_TO");
    if (!path || isForkedChild.load(std::memory_order_relaxed))
        return;
    const int file = open(path, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0666);
    if (file < 0)
        return;
    dprintf(file,
            "%s heap %" PRIu64 " c %" PRIu64 " before %" PRIu64 " own %" PRIu64 " peak %" PRIu64
            "\n",
            program_invocation_short_name, counts.heap.load(), counts.c.load(),
            counts.before.load(), counts.own.load(), counts.peak.load());
    close(file);
}

} // namespace

extern "C" {

[[gnu::visibility("default")]] void* malloc(std::size_t size)
{
    if (isServed(size))
        return makeInHeap(size);
    countInC();
    return __libc_malloc(size);
}

[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size)
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes))
        return orNoMemory(nullptr);
    if (!isServed(bytes)) {
        countInC();
        return __libc_calloc(count, size);
    }
    void* block = makeInHeap(bytes);
    if (block)
        std::memset(block, 0, bytes);
    return block;
}

[[gnu::visibility("default")]] void free(void* block)
{
    if (!block)
        return;
    if (blocks.has(block))
        return releaseInHeap(block);
    countInC();
    __libc_free(block);
}

[[gnu::visibility("default")]] void* realloc(void* block, std::size_t size)
{
    if (!block)
        return malloc(size);
    if (!blocks.has(block)) {
        countInC();
        return __libc_realloc(block, size);
    }
    if (size == 0) {
        free(block);
        return nullptr;
    }
    if (leadOf(block).size == kAligned || !isServed(size))
        return moveBlock(block, size);
    return resizeServed(block, size);
}

[[gnu::visibility("default")]] void* memalign(std::size_t alignment, std::size_t size)
{
    if (alignment <= kAlignment)
        return malloc(size);
    const bool isPower = (alignment & (alignment - 1)) == 0;
    std::size_t bytes = 0;
    if (!isPower || __builtin_add_overflow(size, alignment, &bytes) || !isServed(bytes)) {
        countInC();
        return __libc_memalign(alignment, size);
    }
    return makeAlignedInHeap(alignment, size);
}

[[gnu::visibility("default")]] std::size_t malloc_usable_size(void* block)
{
    if (!block)
        return 0;
    return blocks.has(block) ? sizeOf(leadOf(block)) : CAllocator::usableSize(block);
}
}
