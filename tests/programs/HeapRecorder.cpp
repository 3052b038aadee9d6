// Records what an unmodified program asks of its allocator. To be preloaded (LD_PRELOAD); each
// process writes $HEAP_RECORDER_TO.PID, unless that variable is unset. At most
// $HEAP_RECORDER_LIMIT records (default 1,000,000) are written.
//
// Calls before its constructor and after its destructor, and those of a forked child, are served
// and not recorded. It uses nothing of this project's library, nor of the C++ library.

#include "CAllocator.h"
#include "Trace.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pthread.h>
#include <sched.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

using CAllocator::kAlignment;
using Trace::Call;
using Trace::Record;

constexpr std::size_t kBuffered = 4096;
constexpr std::uint32_t kSlots = 1u << 22; // a power of two
constexpr std::uint32_t kMaxLive = kSlots / 4 * 3;

// The live blocks by address, in a table that is never searched past a free slot.
struct Slot
{
    void* address; // null: free
    std::size_t size;
    std::uint32_t block;
};

struct State
{
    std::atomic_flag locked = ATOMIC_FLAG_INIT;
    bool recording = false;
    int file = -1;
    Slot* slots = nullptr;
    std::uint32_t live = 0;
    std::uint32_t blocks = 0;
    std::uint16_t threads = 0;
    std::uint64_t left = 0;
    std::size_t buffered = 0;
    Record buffer[kBuffered] = {};
};

constinit State state;
[[gnu::tls_model("initial-exec")]] thread_local int threadIndex = -1;

class Lock
{
public:
    Lock()
    {
        while (state.locked.test_and_set(std::memory_order_acquire))
            sched_yield();
    }
    Lock(const Lock&) = delete;
    Lock& operator=(const Lock&) = delete;
    ~Lock() { state.locked.clear(std::memory_order_release); }
};

std::uint32_t homeOf(const void* address)
{
    const auto bits = reinterpret_cast<std::uintptr_t>(address) / kAlignment;
    return static_cast<std::uint32_t>((bits * 0x9e3779b97f4a7c15u) >> 32) & (kSlots - 1);
}

Slot* find(const void* address)
{
    std::uint32_t at = homeOf(address);
    while (state.slots[at].address && state.slots[at].address != address)
        at = (at + 1) & (kSlots - 1);
    return &state.slots[at];
}

// What follows moves up, where it may, so that no gap stands before it.
void erase(Slot* slot)
{
    auto gap = static_cast<std::uint32_t>(slot - state.slots);
    for (std::uint32_t at = (gap + 1) & (kSlots - 1); state.slots[at].address;
         at = (at + 1) & (kSlots - 1)) {
        const std::uint32_t home = homeOf(state.slots[at].address);
        if (((at - home) & (kSlots - 1)) >= ((at - gap) & (kSlots - 1))) {
            state.slots[gap] = state.slots[at];
            gap = at;
        }
    }
    state.slots[gap].address = nullptr;
    --state.live;
}

void flush()
{
    const char* from = reinterpret_cast<const char*>(state.buffer);
    std::size_t left = state.buffered * sizeof(Record);
    while (left > 0) {
        const ssize_t written = write(state.file, from, left);
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0) {
            state.recording = false;
            break;
        }
        from += written;
        left -= static_cast<std::size_t>(written);
    }
    state.buffered = 0;
}

void append(Call call, std::uint32_t block, std::size_t size, unsigned alignmentLog2 = 0)
{
    if (threadIndex < 0)
        threadIndex = state.threads++;
    state.buffer[state.buffered++] = {block, static_cast<std::uint16_t>(threadIndex), call,
                                      static_cast<std::uint8_t>(alignmentLog2), size};
    if (state.buffered == kBuffered)
        flush();
    if (--state.left == 0)
        state.recording = false;
}

void noteMade(void* block, std::size_t size, Call call = Call::eAlloc, unsigned alignmentLog2 = 0)
{
    if (!block || !state.recording || state.live >= kMaxLive)
        return;
    *find(block) = {block, size, state.blocks};
    ++state.live;
    append(call, state.blocks++, size, alignmentLog2);
}

void noteReleased(void* block)
{
    if (!state.recording)
        return;
    if (Slot* slot = find(block); slot->address) {
        append(Call::eRelease, slot->block, 0);
        erase(slot);
    }
}

void beginRecording()
{
    const char* prefix = std::getenv("HEAP_RECORDER_TO");
    if (!prefix)
        return;
    const char* limit = std::getenv("HEAP_RECORDER_LIMIT");
    state.left = limit ? std::strtoull(limit, nullptr, 10) : 1'000'000;
    char path[4096];
    std::snprintf(path, sizeof path, "%s.%d", prefix, static_cast<int>(getpid()));
    void* slots = mmap(nullptr, kSlots * sizeof(Slot), PROT_READ | PROT_WRITE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    state.file = open(path, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666);
    if (slots == MAP_FAILED || state.file < 0 || state.left == 0)
        return;
    state.slots = static_cast<Slot*>(slots);
    Trace::Header header = {};
    std::memcpy(header.magic, Trace::kMagic, sizeof header.magic);
    std::snprintf(header.program, sizeof header.program, "%s", program_invocation_short_name);
    state.recording = write(state.file, &header, sizeof header) == sizeof header;
}

void lockForFork()
{
    while (state.locked.test_and_set(std::memory_order_acquire))
        sched_yield();
}
void unlockInParent()
{
    state.locked.clear(std::memory_order_release);
}
void stopInChild()
{
    state.recording = false;
    state.locked.clear(std::memory_order_release);
}

[[gnu::constructor]] void start()
{
    pthread_atfork(&lockForFork, &unlockInParent, &stopInChild);
    const int error = errno;
    const Lock lock;
    beginRecording();
    errno = error;
}

[[gnu::destructor]] void finish()
{
    const Lock lock;
    if (state.recording || state.buffered > 0)
        flush();
    state.recording = false;
}

} // namespace

extern "C" {

[[gnu::visibility("default")]] void* malloc(std::size_t size)
{
    const Lock lock;
    void* block = __libc_malloc(size);
    noteMade(block, size);
    return block;
}

[[gnu::visibility("default")]] void* calloc(std::size_t count, std::size_t size)
{
    const Lock lock;
    void* block = __libc_calloc(count, size);
    noteMade(block, count * size);
    return block;
}

[[gnu::visibility("default")]] void free(void* block)
{
    if (!block)
        return;
    const Lock lock;
    noteReleased(block);
    __libc_free(block);
}

[[gnu::visibility("default")]] void* realloc(void* block, std::size_t size)
{
    if (!block)
        return malloc(size);
    if (size == 0) {
        free(block);
        return nullptr;
    }
    const Lock lock;
    void* moved = __libc_realloc(block, size);
    Slot* slot = moved && state.recording ? find(block) : nullptr;
    if (slot && slot->address) {
        const std::uint32_t number = slot->block;
        erase(slot);
        *find(moved) = {moved, size, number};
        ++state.live;
        append(Call::eResize, number, size);
    } else {
        noteMade(moved, size); // it was made before the recording
    }
    return moved;
}

[[gnu::visibility("default")]] void* memalign(std::size_t alignment, std::size_t size)
{
    const Lock lock;
    void* block = __libc_memalign(alignment, size);
    if (alignment <= kAlignment)
        noteMade(block, size);
    else
        noteMade(
            block, size, Call::eAligned,
            static_cast<unsigned>(__builtin_ctzll(static_cast<unsigned long long>(alignment))));
    return block;
}

// A recorded block is as long as was asked for, so that the program uses no more of it.
[[gnu::visibility("default")]] std::size_t malloc_usable_size(void* block)
{
    if (!block)
        return 0;
    {
        const Lock lock;
        if (state.slots)
            if (const Slot* slot = find(block); slot->address)
                return slot->size;
    }
    return CAllocator::usableSize(block);
}
}
