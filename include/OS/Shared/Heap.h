#pragma once

#include <OS/Shared/ProcessHeapAllocator.h>
#include <OS/Shared/iHeap.h>
#include <OS/Shared/iReclaimable.h>

#include <atomic>
#include <vector>

/// The base of every heap: pages on the POSIX mapping calls, the registry of caches, and blocks
/// straight from the C allocator. See iHeap for what each operation does.
///
/// A client constructs the heaps that derive from it, such as Tq::MTHeap. Destroying one gives back
/// no pages that were mapped through it.
class OS_API Heap : public iHeap
{
public:
    /// Counters of the large-object heap; nothing else writes them, and the last three stay zero.
    struct Stats
    {
        std::uint64_t counters[6] = {};
    };

    Heap();
    Heap(const Heap&) = delete;
    Heap& operator=(const Heap&) = delete;
    ~Heap() override;

    void* alloc(std::size_t size) override;
    void* reAlloc(void* block, std::size_t size) override;
    void deAlloc(void* block) override;
    void* virtualAlloc(void* address, std::size_t length, eAllocationType type,
                       eProtectFlags protect) override;
    void virtualDeAlloc(void* address, std::uint32_t length, eAllocationType type) override;
    void registerReclaimable(iReclaimable* cache) override;
    void deRegisterReclaimable(iReclaimable* cache) override;
    void report() override;
    void reclaim() override;
    void limitUsage() override;
    bool isPointerValid(const void* block) const override;
    bool outOfMemory() const override;

    /// The one record of the process, zero until written.
    static Stats* getHeapStats();

protected:
    static std::atomic<bool> outOfMemory_; // relaxed: readers take it as a hint

private:
    template <class Operation>
    void forEachCache(Operation operation);

    std::vector<iReclaimable*, Tq::ProcessHeapAllocator<iReclaimable*>> reclaimables_;
    std::int32_t pageSize_;
};
