#pragma once

#include "OS/Shared/BinLocks.h"
#include "OS/Shared/ThreadsList.h"

#include <OS/Shared/MTHeap.h>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace Tq {

/// A free block's link to the next one's header lies where its own header is, 12 bytes into 16.
inline std::byte* readLink(const std::byte* header)
{
    std::byte* next;
    std::memcpy(&next, header, sizeof next);
    return next;
}

inline void writeLink(std::byte* header, std::byte* next)
{
    std::memcpy(header, &next, sizeof next);
}

/// The free blocks of a heap's bins.
///
/// Every bin has several lists, and a thread keeps to one of them, so that threads which use the
/// same sizes share neither a lock nor a cache line. What a list has beyond one batch of blocks, it
/// keeps as whole batches, which another thread takes over before its bin gets more memory: what
/// lies unused in a bin is bounded by a batch for each list, at most a quarter of a chunk. No lock
/// is held while another is taken.
///
/// @tparam Locks one of the kinds of BinLocks.h
template <class Locks>
class BinLists
{
public:
    /// Throws std::bad_alloc.
    BinLists() : lists_(map()) {}

    /// Without waiting or calling anything, for a thread that uses its list alone.
    /// @return the header of a free block; null where that cannot be
    [[gnu::always_inline]] std::byte* tryPop(std::uint32_t bin)
    {
        const std::uint32_t index = ownIndexIfDealt();
        if (index >= kLists) [[unlikely]]
            return nullptr;
        List& list = at(index, bin);
        if (!Locks::tryLock(list.lock)) [[unlikely]]
            return nullptr;
        std::byte* header = list.first;
        if (header) [[likely]]
            list.pop();
        Locks::unlock(list.lock);
        return header;
    }
    /// Without waiting or calling anything, too. @return whether that could be
    [[gnu::always_inline]] bool tryPush(std::uint32_t bin, std::byte* header)
    {
        const std::uint32_t index = ownIndexIfDealt();
        if (index >= kLists) [[unlikely]]
            return false;
        List& list = at(index, bin);
        if (!Locks::tryLock(list.lock)) [[unlikely]]
            return false;
        const bool hasRoom = list.room != 0;
        if (hasRoom) [[likely]]
            list.push(header);
        Locks::unlock(list.lock);
        return hasRoom;
    }

    /// @return the header of a free block of the thread's list, or of another's batch; else null
    std::byte* pop(std::uint32_t bin)
    {
        const std::uint32_t own = ownIndex();
        if (std::byte* header = popFrom(at(own, bin), bin))
            return header;
        for (std::uint32_t i = 1; i < kLists; ++i)
            if (std::byte* batch = takeBatch(at((own + i) % kLists, bin), bin)) {
                adopt(at(own, bin), bin, readLink(batch));
                return batch;
            }
        return nullptr;
    }
    [[gnu::noinline]] void push(std::uint32_t bin, std::byte* header)
    {
        List& list = at(ownIndex(), bin);
        const Guard guard(*this, list, bin);
        pushLocked(list, bin, header);
    }
    /// Puts blocks that lie one after the other into the thread's list: the first comes out first.
    void pushRun(std::uint32_t bin, std::byte* first, std::size_t count)
    {
        List& list = at(ownIndex(), bin);
        const Guard guard(*this, list, bin);
        while (count-- > 0)
            pushLocked(list, bin, first + count * MTHeap::getBinMaxSize(bin));
    }

    void lockForFork() { locks_.lockForFork(kCount, states()); }
    void unlockAfterFork() { locks_.unlockAfterFork(kCount, states()); }
    void renewInChild() { locks_.renewInChild(kCount, states()); }

private:
    static constexpr std::uint32_t kLists = Locks::kLists;
    static constexpr std::uint32_t kCount = kLists * MTHeap::kBinCount;
    static constexpr std::size_t kMostInBatch = 128;

    // Neighbours share a cache line, but only those of the same threads.
    struct alignas(32) List
    {
        [[no_unique_address]] typename Locks::State lock;
        std::uint16_t room = 0; // how many blocks are missing in a batch; at first not yet known
        std::byte* first = nullptr;               // the header of the first free block
        std::atomic<std::byte*> batches{nullptr}; // written with the lock held

        void pop()
        {
            first = readLink(first);
            ++room;
        }
        void push(std::byte* header)
        {
            writeLink(header, first);
            first = header;
            --room;
        }
    };
    static_assert(sizeof(List) == 32);

    class Guard
    {
    public:
        Guard(BinLists& lists, List& list, std::uint32_t bin)
            : lists_(lists), list_(list), bin_(bin), hold_(lists.locks_.lock(list.lock, bin))
        {
        }
        ~Guard() { lists_.locks_.unlock(list_.lock, bin_, hold_); }
        Guard(const Guard&) = delete;
        Guard& operator=(const Guard&) = delete;

    private:
        BinLists& lists_;
        List& list_;
        const std::uint32_t bin_;
        [[no_unique_address]] const typename Locks::Hold hold_;
    };

    struct Unmap
    {
        void operator()(List* lists) const { munmap(lists, kCount * sizeof(List)); }
    };
    // All zero is a list with nothing in it, so those of bins and threads that are never used take
    // no memory.
    static List* map()
    {
        void* lists = mmap(nullptr, kCount * sizeof(List), PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (lists == MAP_FAILED)
            throw std::bad_alloc();
        return static_cast<List*>(lists);
    }

    static std::uint32_t ownIndexIfDealt()
    {
        if constexpr (kLists == 1)
            return 0;
        else
            return ThreadsList::indexIfDealt();
    }
    static std::uint32_t ownIndex()
    {
        if constexpr (kLists == 1)
            return 0;
        else
            return ThreadsList::index();
    }
    List& at(std::uint32_t index, std::uint32_t bin)
    {
        return lists_[index * MTHeap::kBinCount + bin];
    }

    static std::uint16_t batchSize(std::uint32_t bin)
    {
        const std::size_t blocks = MTHeap::kChunkSize / 4 / MTHeap::getBinMaxSize(bin);
        return static_cast<std::uint16_t>(std::clamp<std::size_t>(blocks, 1, kMostInBatch));
    }

    // The link between batches lies behind the first block's link to the next block.
    static std::byte* batchLink(std::byte* batch) { return batch + sizeof(std::byte*); }

    std::byte* popFrom(List& list, std::uint32_t bin)
    {
        const Guard guard(*this, list, bin);
        if (!list.first) {
            list.first = popBatch(list);
            list.room = 0;
        }
        std::byte* header = list.first;
        if (header)
            list.pop();
        return header;
    }
    static void pushLocked(List& list, std::uint32_t bin, std::byte* header)
    {
        if (list.room == 0) {
            if (list.first) {
                writeLink(batchLink(list.first), list.batches.load(std::memory_order_relaxed));
                list.batches.store(list.first, std::memory_order_relaxed);
                list.first = nullptr;
            }
            list.room = batchSize(bin);
        }
        list.push(header);
    }
    std::byte* takeBatch(List& list, std::uint32_t bin)
    {
        if (!list.batches.load(std::memory_order_relaxed))
            return nullptr;
        const Guard guard(*this, list, bin);
        return popBatch(list);
    }
    // Takes over a batch less one block.
    void adopt(List& list, std::uint32_t bin, std::byte* first)
    {
        const Guard guard(*this, list, bin);
        if (!list.first) {
            list.first = first;
            list.room = 1;
            return;
        }
        // Another thread that keeps to this list was faster.
        while (first)
            pushLocked(list, bin, std::exchange(first, readLink(first)));
    }
    static std::byte* popBatch(List& list)
    {
        std::byte* batch = list.batches.load(std::memory_order_relaxed);
        if (batch)
            list.batches.store(readLink(batchLink(batch)), std::memory_order_relaxed);
        return batch;
    }

    auto states()
    {
        return [this](std::uint32_t index) -> typename Locks::State& { return lists_[index].lock; };
    }

    [[no_unique_address]] Locks locks_;
    const std::unique_ptr<List[], Unmap> lists_;
};

} // namespace Tq
