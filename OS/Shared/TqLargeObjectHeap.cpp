#include "OS/Shared/TqLargeObjectHeap.h"

#include "OS/Shared/TestAndSetLock.h"

#include "OS/Mac/Core/Assertion.h"

#include <OS.h>
#include <OS/Files/iSettings.h>
#include <OS/Files/iShell.h>
#include <OS/Shared/MTHeap.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <memory>
#include <mutex>
#include <new>
#include <sys/mman.h>
#include <utility>

namespace Tq {

namespace {

constexpr char kPoolSetting[] = "VirtualPoolSizeMb";
constexpr char kDefaultPoolMb[] = "1048576";
constexpr std::uint64_t kMiB = std::uint64_t(1) << 20;
constexpr std::uintptr_t kDecommitUnit = 4096; // fixed, deliberately: not the system's page size
constexpr std::uint64_t kHugePage = 2 * kMiB;
constexpr std::int64_t kComplaintIntervalNs = 1'000'000'000;

std::uint64_t configuredPoolBytes()
{
    const Tq::Ptr<iSettings> settings = OS()->shell()->getSettings(iSettings::eGlobal);
    return LargeObjectHeap::poolBytesFrom(
        settings ? settings->getValue(kPoolSetting, kDefaultPoolMb, nullptr).c_str()
                 : kDefaultPoolMb);
}

std::uint64_t roundUp(std::uint64_t size)
{
    return size + iHeap::kMemAlignmentLarge - size % iHeap::kMemAlignmentLarge;
}

std::uintptr_t addressOf(const void* pointer)
{
    return reinterpret_cast<std::uintptr_t>(pointer);
}

std::int64_t monotonicNs()
{
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return std::int64_t(now.tv_sec) * 1'000'000'000 + now.tv_nsec;
}

// Huge pages fault in 8 MB several times faster. Asked for after every commit: giving pages back
// drops the request.
void askForHugePages(std::byte* from, std::uint64_t size)
{
    if (size < kHugePage)
        return;
    const std::uintptr_t intoPage = addressOf(from) % kDecommitUnit;
    madvise(from - intoPage, size + intoPage, MADV_HUGEPAGE);
}

int cutToInt(std::uint64_t value)
{
    return static_cast<int>(static_cast<std::uint32_t>(value));
}

} // namespace

// Two threads may build one each; the second is thrown away. A lock could be held by another thread
// at the moment of a fork, while the settings are read.
LargeObjectHeap& LargeObjectHeap::instance()
{
    static std::atomic<LargeObjectHeap*> built{nullptr};
    LargeObjectHeap* heap = built.load(std::memory_order_acquire);
    if (!heap) [[unlikely]] {
        auto candidate = std::make_unique<LargeObjectHeap>(configuredPoolBytes());
        if (built.compare_exchange_strong(heap, candidate.get(), std::memory_order_acq_rel))
            heap = candidate.release();
    }
    return *heap;
}

std::uint64_t LargeObjectHeap::poolBytesFrom(const char* text)
{
    constexpr long long kMostMiB = std::numeric_limits<std::int64_t>::max() / std::int64_t(kMiB);
    const long long megabytes = std::strtoll(text, nullptr, 10);
    return megabytes > 0 && megabytes <= kMostMiB ? static_cast<std::uint64_t>(megabytes) * kMiB
                                                  : 0;
}

LargeObjectHeap::LargeObjectHeap(std::uint64_t poolBytes)
    : pages_(OS()->heap()), lastComplaintNs_(monotonicNs() - kComplaintIntervalNs)
{
    lock_.setRank(OSInternal::LockRank::eLargeObject);
    if (poolBytes > 0) {
        void* pool =
            pages_->virtualAlloc(nullptr, poolBytes, iHeap::eMemReserve, iHeap::eProtectReadWrite);
        if (pool == MAP_FAILED)
            poolBytes = 0;
        else
            memBase_ = memCommit_ = static_cast<std::byte*>(pool);
    }
    memLimit_ = memBase_ + poolBytes;
    if (poolBytes > 0) {
        try {
            freePool_.start(MemAlloc{memBase_, poolBytes});
        } catch (...) {
            munmap(memBase_, poolBytes);
            throw;
        }
    }
    Heap::Stats& stats = *Heap::getHeapStats();
    stats.counters[0] = stats.counters[2] = poolBytes;
    enrol();
}

LargeObjectHeap::~LargeObjectHeap()
{
    withdraw();
    if (memBase_)
        munmap(memBase_, static_cast<std::size_t>(memLimit_ - memBase_));
}

void* LargeObjectHeap::Alloc(std::uint64_t size)
{
    const int errorBefore = errno;
    const std::uint64_t rounded = roundUp(size);
    if (rounded < size)
        throw std::bad_alloc();
    errno = errorBefore;
    void* block = takeFromPool(rounded);
    if (!block)
        block = takeFromSystem(rounded, errno);
    if (addressOf(block) % iHeap::kMemAlignmentLarge != 0)
        OSInternal::printLine("LOH unaligned\n");
    return block;
}

// @return null with the reason in errno, which stays as it was when nothing fits
void* LargeObjectHeap::takeFromPool(std::uint64_t rounded)
{
    const std::lock_guard lock(lock_);
    const auto range = freePool_.bestFit(rounded);
    if (range == freePool_.end())
        return nullptr;
    const MemAlloc block{range->addr, rounded};
    // Also what was committed before: releasing a block takes the pages inside it away.
    if (!commit(block.addr, rounded))
        return nullptr;
    try {
        usedPool_.insert(block);
    } catch (const std::bad_alloc&) {
        errno = ENOMEM;
        return nullptr;
    }
    memCommit_ = std::max(memCommit_, block.end());
    freePool_.takeFront(range, rounded);
    countUsed(rounded, true);
    return block.addr;
}

// The lock is not held: this may wait until another thread gives something back.
void* LargeObjectHeap::takeFromSystem(std::uint64_t size, int error)
{
    const std::int64_t now = monotonicNs();
    std::int64_t last = lastComplaintNs_.load(std::memory_order_relaxed);
    if (now - last >= kComplaintIntervalNs &&
        lastComplaintNs_.compare_exchange_strong(last, now, std::memory_order_relaxed))
        OSInternal::printLine("No physical memory available, err %d\n", error);
    return MTHeap::osAlloc(size);
}

bool LargeObjectHeap::commit(std::byte* from, std::uint64_t size)
{
    if (!pages_->virtualAlloc(from, size, iHeap::eMemCommit, iHeap::eProtectReadWrite))
        return false;
    const int error = errno;
    askForHugePages(from, size);
    errno = error;
    return true;
}

// Only whole units strictly inside: those at the ends may be shared with neighbours.
void LargeObjectHeap::decommitUnused(const MemAlloc& range)
{
    const std::uintptr_t address = addressOf(range.addr);
    const std::uintptr_t start = address / kDecommitUnit * kDecommitUnit + kDecommitUnit;
    const std::uintptr_t end = (address + range.size) / kDecommitUnit * kDecommitUnit;
    if (start + kDecommitUnit < end)
        pages_->virtualDeAlloc(range.addr + (start - address),
                               static_cast<std::uint32_t>(end - kDecommitUnit - start),
                               iHeap::eMemDecommit);
}

void LargeObjectHeap::Free(void* block)
{
    std::unique_lock lock(lock_);
    const auto found = usedPool_.find(static_cast<std::byte*>(block));
    if (found == usedPool_.end()) {
        lock.unlock();
        if (isInPool(block)) {
            OSInternal::printLine("double deletion at %p\n", block);
            OSInternal::reportAssertion("false", "OS/Shared/TqLargeObjectHeap line 231");
        } else {
            OSInternal::printLine("unexpected address for delete at %p\n", block);
            MTHeap::osFree(block);
        }
        return;
    }
    auto node = usedPool_.extract(found);
    MemAlloc& range = node.value();
    range.size = static_cast<std::uint32_t>(range.size);
    countUsed(range.size, false);

    // Nobody else can own the range now. Giving back 8 MB takes half a millisecond.
    memDecommitting_ += range.size;
    lock.unlock();
    decommitUnused(range);
    lock.lock();
    memDecommitting_ -= range.size;

    const auto merged = freePool_.putBack(std::move(node));
    if (merged != freePool_.end() && std::next(merged) == freePool_.end())
        memCommit_ = std::min(memCommit_, merged->addr);
}

void* LargeObjectHeap::Realloc(void* block, std::uint64_t size)
{
    std::uint64_t oldSize;
    {
        std::unique_lock lock(lock_);
        const auto found = usedPool_.find(static_cast<std::byte*>(block));
        if (found == usedPool_.end()) {
            lock.unlock();
            if (!isInPool(block))
                return MTHeap::osRealloc(block, size);
            OSInternal::printLine("realloc alert!\n");
            return nullptr;
        }
        oldSize = found->size;
        if (size <= oldSize)
            return block;
        bool refused = false;
        if (growInPlace(found, size, refused))
            return block;
        if (refused)
            return nullptr;
    }
    void* moved = Alloc(size);
    std::memcpy(moved, block, oldSize);
    Free(block);
    return moved;
}

// @param refused set when there was room that the system would not commit
bool LargeObjectHeap::growInPlace(RangesByAddress::iterator block, std::uint64_t size,
                                  bool& refused)
{
    const auto behind = freePool_.beginningAt(block->end());
    if (behind == freePool_.end() || behind->size < size - block->size)
        return false;
    const std::uint64_t missing = size - block->size;
    const std::uint64_t needed = missing % iHeap::kMemAlignmentLarge ? roundUp(missing) : missing;
    const std::uint64_t taken = behind->size / 2 >= size ? needed : behind->size;
    // Pages inside a free range may be decommitted, below the tracked end as well.
    if (!commit(block->end(), taken)) {
        refused = true;
        return false;
    }
    const_cast<MemAlloc&>(*block).size += taken;
    memCommit_ = std::max(memCommit_, block->end());
    freePool_.takeFront(behind, taken);
    countUsed(taken, true);
    return true;
}

std::uint64_t LargeObjectHeap::Size(const void* block) const
{
    const std::lock_guard lock(lock_);
    const auto found = usedPool_.find(static_cast<const std::byte*>(block));
    return found == usedPool_.end() ? 0 : found->size;
}

bool LargeObjectHeap::Validate(const void* block) const
{
    return Size(block) != 0;
}

bool LargeObjectHeap::isInPool(const void* address) const
{
    return addressOf(address) - addressOf(memBase_) <
           static_cast<std::uintptr_t>(memLimit_ - memBase_);
}

void LargeObjectHeap::countUsed(std::uint64_t bytes, bool more)
{
    memUsed_ = more ? memUsed_ + bytes : memUsed_ - bytes;
    Heap::getHeapStats()->counters[1] = memUsed_;
}

void LargeObjectHeap::reportUsage() const
{
    const std::lock_guard lock(lock_);
    std::uint64_t free = 0, used = 0;
    for (const MemAlloc& range : freePool_)
        free += range.size;
    for (const MemAlloc& block : usedPool_)
        used += block.size;
    const auto total = static_cast<std::uint64_t>(memLimit_ - memBase_);
    const std::uint64_t sum = free + used + memDecommitting_;
    if (sum != total)
        OSInternal::printLine("free+used %d, total %d, diff %d\n", cutToInt(sum), cutToInt(total),
                              cutToInt(total - sum));
    OSInternal::printLine("%dMb in pool size %d, %dMb used size %d\n", cutToInt(free) / int(kMiB),
                          cutToInt(freePool_.size()), cutToInt(memUsed_) / int(kMiB),
                          cutToInt(usedPool_.size()));
}

void LargeObjectHeap::lockForFork()
{
    for (Tq::lockForFork(lock_); memDecommitting_ != 0; Tq::lockForFork(lock_)) {
        lock_.unlock();
        TestAndSetLock::nap();
    }
}

void LargeObjectHeap::unlockAfterFork()
{
    lock_.unlock();
}

void LargeObjectHeap::renewInChild()
{
    Tq::renewInChild(lock_, OSInternal::LockRank::eLargeObject);
}

} // namespace Tq
