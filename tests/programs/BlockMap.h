#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <sys/mman.h>

/// Knows which addresses are the beginnings of a heap's blocks: one bit for every 16 bytes that a
/// process can address, in 1 TiB that is reserved and touched only where there are blocks, which
/// takes 1/128 of their memory.
///
/// Any thread, without locks: a block's bit changes only in the hands of who owns the block.
class BlockMap
{
public:
    /// @return false when the system refuses the address space
    bool reserve()
    {
        void* words = mmap(nullptr, kBytes, PROT_READ | PROT_WRITE,
                           MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (words == MAP_FAILED)
            return false;
        madvise(words, kBytes, MADV_NOHUGEPAGE); // the blocks are sparse
        madvise(words, kBytes, MADV_DONTDUMP);
        words_ = static_cast<std::atomic<std::uint64_t>*>(words);
        return true;
    }

    bool has(const void* block) const
    {
        const Place place = placeOf(block);
        return words_ && place.word < kBytes / sizeof(std::uint64_t) &&
               (words_[place.word].load(std::memory_order_relaxed) & place.bit) != 0;
    }
    void add(const void* block)
    {
        const Place place = placeOf(block);
        words_[place.word].fetch_or(place.bit, std::memory_order_relaxed);
    }
    /// Before the block is released: at once it may be another thread's.
    void remove(const void* block)
    {
        const Place place = placeOf(block);
        words_[place.word].fetch_and(~place.bit, std::memory_order_relaxed);
    }

private:
    static constexpr std::size_t kBytes = std::size_t(1) << (47 - 4 - 3);

    struct Place
    {
        std::size_t word;
        std::uint64_t bit;
    };
    static Place placeOf(const void* block)
    {
        const std::uintptr_t unit = reinterpret_cast<std::uintptr_t>(block) >> 4;
        return {unit / 64, std::uint64_t(1) << (unit % 64)};
    }

    std::atomic<std::uint64_t>* words_ = nullptr;
};
