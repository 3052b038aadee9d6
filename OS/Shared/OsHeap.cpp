#include "OS/Shared/OsHeap.h"

#include "OS/Shared/TqHeap_Debug.h"

#include <cstdlib>
#include <cstring>
#include <new>

namespace Tq {

OsHeap::~OsHeap() = default;

void OsHeap::useDebugHeapIfAsked()
{
    const char* asked = std::getenv("VANTOR_DEBUG_HEAP");
    if (!asked || std::strcmp(asked, "1") != 0)
        return;
    const char* quarantine = std::getenv("VANTOR_DEBUG_HEAP_QUARANTINE_MB");
    // Straight from the C allocator: operator new comes through this very heap.
    if (void* storage = std::malloc(sizeof(DebugHeap)))
        debugHeap_ = new (storage)
            DebugHeap(DebugHeap::quarantineMbFrom(quarantine), DebugHeap::Unknown::eRelease);
}

void* OsHeap::alloc(std::size_t size)
{
    if (debugHeap_) [[unlikely]]
        return debugHeap_->alloc(size);
    return std::malloc(size);
}

void* OsHeap::reAlloc(void* block, std::size_t size)
{
    if (debugHeap_) [[unlikely]]
        return debugHeap_->reAlloc(block, size);
    return std::realloc(block, size);
}

void OsHeap::deAlloc(void* block)
{
    if (debugHeap_) [[unlikely]]
        return debugHeap_->deAlloc(block);
    std::free(block);
}

void OsHeap::report()
{
    Heap::report();
    if (debugHeap_)
        debugHeap_->reportLeaks();
}

bool OsHeap::isPointerValid(const void* block) const
{
    return !debugHeap_ || debugHeap_->isPointerValid(block);
}

} // namespace Tq
