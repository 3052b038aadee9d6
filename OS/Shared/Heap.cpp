#include <OS/Shared/Heap.h>

#include "OS/Mac/Core/Assertion.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <sys/mman.h>
#include <unistd.h>

std::atomic<bool> Heap::outOfMemory_{false};

Heap::Heap() : pageSize_(static_cast<std::int32_t>(sysconf(_SC_PAGESIZE))) {}
Heap::~Heap() = default;

void* Heap::alloc(std::size_t size)
{
    return std::malloc(size);
}

void* Heap::reAlloc(void* block, std::size_t size)
{
    return std::realloc(block, size);
}

void Heap::deAlloc(void* block)
{
    std::free(block);
}

void* Heap::virtualAlloc(void* address, std::size_t length, eAllocationType type,
                         eProtectFlags /*protect*/)
{
    constexpr int kPrivate = MAP_PRIVATE | MAP_ANONYMOUS;
    constexpr int kReadWrite = PROT_READ | PROT_WRITE;
    switch (type) {
    case eMemCommit: {
        const auto where = reinterpret_cast<std::uintptr_t>(address);
        const auto intoPage = where % static_cast<std::uintptr_t>(pageSize_);
        void* page = reinterpret_cast<void*>(where - intoPage);
        return mprotect(page, length + intoPage, kReadWrite) == 0 ? address : nullptr;
    }
    case eMemReserve:
        return mmap(address, length, PROT_NONE, kPrivate, -1, 0);
    case eMemReserveCommit:
        return mmap(address, length, kReadWrite, address ? kPrivate | MAP_FIXED : kPrivate, -1, 0);
    default:
        OSInternal::reportAssertion("allocationType == eMemCommit", "OS/Shared/Heap line 112");
        return nullptr;
    }
}

void Heap::virtualDeAlloc(void* address, std::uint32_t length, eAllocationType type)
{
    if (reinterpret_cast<std::uintptr_t>(address) % static_cast<std::uintptr_t>(pageSize_) != 0)
        OSInternal::reportAssertion("(size_t) mem % pageSize_ == 0", "OS/Shared/Heap line 122");

    if (type == eMemRelease && munmap(address, length) == 0)
        return;
    if (type == eMemDecommit) {
        // Twice, deliberately: the change of sharing makes the system drop the pages' contents,
        // while the range stays reserved throughout.
        constexpr int kFixed = MAP_FIXED | MAP_ANONYMOUS;
        if (mmap(address, length, PROT_NONE, kFixed | MAP_SHARED, -1, 0) != address)
            OSInternal::reportAssertion("chunk1 == mem", "OS/Shared/Heap line 130");
        if (mmap(address, length, PROT_NONE, kFixed | MAP_PRIVATE, -1, 0) != address)
            OSInternal::reportAssertion("chunk2 == mem", "OS/Shared/Heap line 133");
        return;
    }
    OSInternal::printLine("virtualDealloc failed (%d)", errno);
    OSInternal::reportAssertion("false", "OS/Shared/Heap line 146");
}

void Heap::registerReclaimable(iReclaimable* cache)
{
    reclaimables_.push_back(cache);
}

void Heap::deRegisterReclaimable(iReclaimable* cache)
{
    const auto found = std::find(reclaimables_.begin(), reclaimables_.end(), cache);
    if (found != reclaimables_.end())
        reclaimables_.erase(found);
}

// A cache may register or deregister during the walk: the count is read anew each time.
template <class Operation>
void Heap::forEachCache(Operation operation)
{
    for (std::size_t i = 0; i < reclaimables_.size(); ++i)
        operation(*reclaimables_[i]);
}

void Heap::report()
{
    forEachCache([](iReclaimable& cache) {
        cache.reportUsage();
        OSInternal::printTimed(OS()->utils()->timeNow(), "\n\n");
    });
}

void Heap::reclaim()
{
    forEachCache([](iReclaimable& cache) { cache.purge(); });
}

void Heap::limitUsage()
{
    forEachCache([](iReclaimable& cache) { cache.limitUsage(); });
}

bool Heap::isPointerValid(const void*) const
{
    return true;
}

bool Heap::outOfMemory() const
{
    return outOfMemory_.load(std::memory_order_relaxed);
}

Heap::Stats* Heap::getHeapStats()
{
    static Stats stats;
    return &stats;
}
