#include "OS/Shared/GuardedArea.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <new>
#include <sys/mman.h>
#include <unistd.h>

namespace Tq {

namespace {

constexpr std::size_t kSmallestRange = std::size_t(1) << 20;
constexpr std::size_t kAlignment = 16;
constexpr std::size_t kSmallestCanary = 16;

std::atomic<std::uint32_t> liveBlocks{0}; // of all areas

// Address space that costs memory only where it is written. Null when there is none.
void* reserve(std::size_t length, int access)
{
    void* range = mmap(nullptr, length, access, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    return range == MAP_FAILED ? nullptr : range;
}

// Bytes that are never zero, which overruns most often write, and differ from their neighbours.
constexpr auto kPattern = [] {
    std::array<char, 4096> pattern{};
    for (unsigned i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<char>(0x80u | (i * 11u & 0x7fu));
    return pattern;
}();

// Calls operation(at, pattern, length) for each piece of a range with the pattern that belongs
// there.
template <class Operation>
void forEachPiece(char* begin, char* end, Operation operation)
{
    while (begin < end) {
        const std::size_t offset = reinterpret_cast<std::uintptr_t>(begin) % kPattern.size();
        const std::size_t length =
            std::min(kPattern.size() - offset, static_cast<std::size_t>(end - begin));
        operation(begin, kPattern.data() + offset, length);
        begin += length;
    }
}

} // namespace

GuardedArea::GuardedArea(std::size_t quarantineBytes, std::size_t rangeBytes)
    : pageSize_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))), quarantineBytes_(quarantineBytes)
{
    for (std::size_t length = rangeBytes; length >= kSmallestRange && !byteCount_; length /= 2) {
        if (void* range = reserve(length, PROT_NONE)) {
            base_ = reinterpret_cast<std::uintptr_t>(range);
            byteCount_ = length;
        }
    }
    const std::size_t pages = byteCount_ / pageSize_;
    constexpr int kReadWrite = PROT_READ | PROT_WRITE;
    if (pages > 0) {
        pageTable_ =
            static_cast<std::uint32_t*>(reserve(pages * sizeof(std::uint32_t), kReadWrite));
        records_ =
            static_cast<GuardedBlock*>(reserve(kMaxRecords * sizeof(GuardedBlock), kReadWrite));
    }
    // The first page stays without access, too: what runs out of the first block at its start.
    if (pageTable_ && records_)
        free_.giveBack(1, static_cast<std::uint32_t>(pages - 1));
}

GuardedArea::~GuardedArea()
{
    if (records_)
        munmap(records_, kMaxRecords * sizeof(GuardedBlock));
    if (pageTable_)
        munmap(pageTable_, byteCount_ / pageSize_ * sizeof(std::uint32_t));
    if (base_)
        munmap(reinterpret_cast<void*>(base_), byteCount_);
    liveBlocks.fetch_sub(liveCount_, std::memory_order_relaxed);
}

std::uint32_t GuardedArea::pageOf(const void* address) const noexcept
{
    return static_cast<std::uint32_t>((reinterpret_cast<std::uintptr_t>(address) - base_) /
                                      pageSize_);
}

char* GuardedArea::pageAt(std::uint32_t page) const noexcept
{
    return reinterpret_cast<char*>(base_ + page * pageSize_);
}

char* GuardedArea::guardOf(const GuardedBlock& block) const noexcept
{
    return pageAt(block.firstPage + block.pageCount);
}

std::atomic_ref<std::uint32_t> GuardedArea::entry(std::uint32_t page) const noexcept
{
    return std::atomic_ref<std::uint32_t>(pageTable_[page]);
}

GuardedBlock* GuardedArea::find(const void* address) const noexcept
{
    if (!contains(address) || !pageTable_ || !records_)
        return nullptr;
    const std::uint32_t number = entry(pageOf(address)).load(std::memory_order_acquire);
    if (number == 0)
        return nullptr;
    GuardedBlock* block = &records_[number - 1];
    return block->state.load(std::memory_order_acquire) != GuardedBlock::State::eNone ? block
                                                                                      : nullptr;
}

std::uint32_t GuardedArea::numberOf(const GuardedBlock& record) const noexcept
{
    return static_cast<std::uint32_t>(&record - records_) + 1;
}

// What is in the quarantine makes room where there is no other.
std::uint32_t GuardedArea::takePages(std::uint32_t count) noexcept
try {
    for (;;) {
        if (const auto first = free_.take(count))
            return *first;
        if (oldest_ == 0)
            return 0; // the first page is never handed out
        evictOldest();
    }
} catch (const std::bad_alloc&) {
    return 0;
}

GuardedBlock* GuardedArea::takeRecord() noexcept
{
    if (unusedRecords_ == 0 && recordCount_ < kMaxRecords)
        return new (&records_[recordCount_++]) GuardedBlock;
    if (unusedRecords_ == 0 && oldest_ != 0)
        evictOldest();
    if (unusedRecords_ == 0)
        return nullptr;
    GuardedBlock* record = &records_[unusedRecords_ - 1];
    unusedRecords_ = record->next;
    return record;
}

void GuardedArea::putBack(GuardedBlock& record) noexcept
{
    record.next = unusedRecords_;
    unusedRecords_ = numberOf(record);
}

// The pages stay unused when there is no memory to remember them with.
void GuardedArea::putBackPages(std::uint32_t first, std::uint32_t count) noexcept
try {
    free_.giveBack(first, count);
} catch (const std::bad_alloc&) {
}

GuardedBlock* GuardedArea::allocate(std::size_t size, const CallStack& stack) noexcept
{
    if (size > byteCount_ / 2)
        return nullptr;
    if (liveBlocks.fetch_add(1, std::memory_order_relaxed) < kMaxLiveBlocks) {
        if (GuardedBlock* record = takeRecord()) {
            if (place(*record, size)) {
                record->allocated = stack;
                publish(*record);
                return record;
            }
            putBack(*record);
        }
    }
    liveBlocks.fetch_sub(1, std::memory_order_relaxed);
    return nullptr;
}

bool GuardedArea::place(GuardedBlock& record, std::size_t size) noexcept
{
    const std::size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
    const auto pages =
        static_cast<std::uint32_t>((kSmallestCanary + rounded + pageSize_ - 1) / pageSize_);
    const std::uint32_t first = takePages(pages + 1);
    if (first == 0)
        return false;
    if (mprotect(pageAt(first), pages * pageSize_, PROT_READ | PROT_WRITE) != 0) {
        putBackPages(first, pages + 1);
        return false;
    }
    record.firstPage = first;
    record.pageCount = pages;
    record.start = guardOf(record) - rounded;
    record.size = size;
    fillPattern(record);
    return true;
}

void GuardedArea::publish(GuardedBlock& record) noexcept
{
    record.state.store(GuardedBlock::State::eLive, std::memory_order_release);
    for (std::uint32_t i = 0; i <= record.pageCount; ++i)
        entry(record.firstPage + i).store(numberOf(record), std::memory_order_release);
    ++liveCount_;
}

std::size_t GuardedArea::heldBy(const GuardedBlock& block) const noexcept
{
    const std::size_t bytes = block.pageCount * pageSize_;
    return bytes > kMaxKeptBytes ? pageSize_ : bytes;
}

void GuardedArea::release(GuardedBlock& block, const CallStack& stack) noexcept
{
    block.freed = stack;
    block.state.store(GuardedBlock::State::eFreed, std::memory_order_release);
    // Refused only when the process has no mapping left; the block is then freed all the same.
    const std::size_t bytes = block.pageCount * pageSize_;
    mprotect(pageAt(block.firstPage), bytes, PROT_NONE);
    if (bytes > kMaxKeptBytes)
        madvise(pageAt(block.firstPage), bytes, MADV_DONTNEED);
    --liveCount_;
    liveBlocks.fetch_sub(1, std::memory_order_relaxed);

    block.next = 0;
    (newest_ ? records_[newest_ - 1].next : oldest_) = numberOf(block);
    newest_ = numberOf(block);
    quarantined_ += heldBy(block);
    while (quarantined_ > quarantineBytes_)
        evictOldest();
}

void GuardedArea::evictOldest() noexcept
{
    GuardedBlock& block = records_[oldest_ - 1];
    oldest_ = block.next;
    if (oldest_ == 0)
        newest_ = 0;
    quarantined_ -= heldBy(block);
    block.state.store(GuardedBlock::State::eNone, std::memory_order_release);
    for (std::uint32_t i = 0; i <= block.pageCount; ++i)
        entry(block.firstPage + i).store(0, std::memory_order_release);
    // Asked again for what was refused before: a page of this run may become another's guard.
    mprotect(pageAt(block.firstPage), block.pageCount * pageSize_, PROT_NONE);
    madvise(pageAt(block.firstPage), block.pageCount * pageSize_, MADV_DONTNEED);
    putBackPages(block.firstPage, block.pageCount + 1);
    putBack(block);
}

void GuardedArea::fillPattern(const GuardedBlock& block) const noexcept
{
    forEachPiece(pageAt(block.firstPage), block.start,
                 [](char* at, const char* pattern, std::size_t n) { std::memcpy(at, pattern, n); });
    forEachPiece(block.start + block.size, guardOf(block),
                 [](char* at, const char* pattern, std::size_t n) { std::memcpy(at, pattern, n); });
}

GuardedArea::Damage GuardedArea::damageOf(const GuardedBlock& block) const noexcept
{
    Damage damage;
    const auto compare = [](std::size_t& count, char*& first) {
        return [&](char* at, const char* pattern, std::size_t n) {
            if (std::memcmp(at, pattern, n) == 0)
                return;
            for (std::size_t i = 0; i < n; ++i)
                if (at[i] != pattern[i] && count++ == 0)
                    first = at + i;
        };
    };
    char* first = nullptr;
    forEachPiece(block.start + block.size, guardOf(block), compare(damage.behind, first));
    forEachPiece(pageAt(block.firstPage), block.start, compare(damage.before, first));
    if (damage.before > 0)
        damage.furthestBefore = static_cast<std::size_t>(block.start - first);
    return damage;
}

} // namespace Tq
