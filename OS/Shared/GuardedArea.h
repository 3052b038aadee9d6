#pragma once

#include "OS/Shared/CallStack.h"
#include "OS/Shared/PageRuns.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace Tq {

/// What is known of a guarded block.
struct BlockFacts
{
    char* start = nullptr;
    std::size_t size = 0;
    CallStack allocated;
    CallStack freed; // once it is
};

struct GuardedBlock : BlockFacts
{
    enum class State : std::uint8_t
    {
        eNone,
        eLive,
        eFreed // in the quarantine
    };

    std::atomic<State> state{State::eNone}; // what is released with it: the facts
    std::uint32_t firstPage = 0;
    std::uint32_t pageCount = 0; // the guard page not included
    std::uint32_t next = 0;      // in the quarantine, or among the unused ones
};

/// One reserved range of addresses, handed out in blocks that each end at a page without access:
///
///     | canary ........ | block ........ | gap | guard page |
///
/// A block starts at a multiple of 16, so its gap is shorter than 16 bytes; canary and gap hold a
/// pattern. A released block loses access and stays in a quarantine of bounded size, oldest out
/// first; blocks of more than kMaxKeptBytes lose their contents and count as one page there.
///
/// All facts lie outside the range, where no overrun reaches them. The caller locks, but for
/// contains() and find(), which any thread and any signal handler may call.
class GuardedArea
{
public:
    /// For all areas of the process: a block takes two of its 65,530 mappings.
    static constexpr std::uint32_t kMaxLiveBlocks = 16'000;
    static constexpr std::size_t kMaxKeptBytes = 64 * 1024;
    static constexpr std::size_t kRangeBytes = std::size_t(64) << 30;

    /// A range that cannot be reserved leaves an area that allocates nothing.
    /// @param rangeBytes at most, a power of two; where there is less room, less
    explicit GuardedArea(std::size_t quarantineBytes, std::size_t rangeBytes = kRangeBytes);
    GuardedArea(const GuardedArea&) = delete;
    GuardedArea& operator=(const GuardedArea&) = delete;
    ~GuardedArea();

    bool contains(const void* address) const noexcept
    {
        const auto where = reinterpret_cast<std::uintptr_t>(address);
        return where - base_ < byteCount_;
    }
    /// @return the block, live or in the quarantine, on whose pages (its guard page included) an
    /// address lies; else null
    GuardedBlock* find(const void* address) const noexcept;

    /// @return null when there is no place, or when too many blocks live
    GuardedBlock* allocate(std::size_t size, const CallStack& stack) noexcept;
    void release(GuardedBlock& block, const CallStack& stack) noexcept;

    template <class Operation>
    void forEachLive(Operation operation) const
    {
        for (std::uint32_t i = 0; i < recordCount_; ++i)
            if (records_[i].state.load(std::memory_order_relaxed) == GuardedBlock::State::eLive)
                operation(std::as_const(records_[i]));
    }

    /// The bytes of the pattern that are no longer as they were, in canary and gap.
    struct Damage
    {
        std::size_t before = 0;         // how many
        std::size_t furthestBefore = 0; // how many bytes before the block's start the first lies
        std::size_t behind = 0;
        explicit operator bool() const { return before + behind > 0; }
    };
    Damage damageOf(const GuardedBlock& block) const noexcept;
    /// Writes the pattern of canary and gap anew.
    void fillPattern(const GuardedBlock& block) const noexcept;

private:
    static constexpr std::uint32_t kMaxRecords = 4 * kMaxLiveBlocks;

    std::uint32_t pageOf(const void* address) const noexcept;
    char* pageAt(std::uint32_t page) const noexcept;
    char* guardOf(const GuardedBlock& block) const noexcept;
    std::atomic_ref<std::uint32_t> entry(std::uint32_t page) const noexcept;
    std::uint32_t numberOf(const GuardedBlock& record) const noexcept;
    std::uint32_t takePages(std::uint32_t count) noexcept;
    void putBackPages(std::uint32_t first, std::uint32_t count) noexcept;
    GuardedBlock* takeRecord() noexcept;
    void putBack(GuardedBlock& record) noexcept;
    bool place(GuardedBlock& record, std::size_t size) noexcept;
    void publish(GuardedBlock& record) noexcept;
    std::size_t heldBy(const GuardedBlock& block) const noexcept;
    void evictOldest() noexcept;

    std::uintptr_t base_ = 0;
    std::size_t byteCount_ = 0;
    std::size_t pageSize_;
    std::uint32_t* pageTable_ = nullptr; // of each page: 1 + the number of its block's record, or 0
    GuardedBlock* records_ = nullptr;
    std::uint32_t recordCount_ = 0;   // so many have ever been used
    std::uint32_t unusedRecords_ = 0; // a chain of 1 + number
    std::uint32_t liveCount_ = 0;
    std::uint32_t oldest_ = 0; // the quarantine, a chain of 1 + number
    std::uint32_t newest_ = 0;
    std::size_t quarantined_ = 0;
    const std::size_t quarantineBytes_;
    PageRuns free_{0};
};

} // namespace Tq
