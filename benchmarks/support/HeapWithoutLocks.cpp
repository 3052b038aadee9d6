// The heap once more under another name, with other locks on its bins.
#define MTHeap MTHeapWithoutLocks
#undef OS_HEAP_CRITICAL_SECTIONS
#define OS_HEAP_WITHOUT_LOCKS
#include "OS/Shared/TqHeap_MultiThreaded.cpp"

#include "support/HeapVariants.h"

std::unique_ptr<iHeap> Bench::makeHeapWithoutLocks()
{
    return std::make_unique<Tq::MTHeapWithoutLocks>();
}
