// The heap once more under another name, with other locks on its bins.
#define MTHeap MTHeapWithCriticalSections
#undef OS_HEAP_CRITICAL_SECTIONS
#define OS_HEAP_CRITICAL_SECTIONS
#include "OS/Shared/TqHeap_MultiThreaded.cpp"

#include "support/HeapVariants.h"

std::unique_ptr<iHeap> Bench::makeHeapWithCriticalSections()
{
    return std::make_unique<Tq::MTHeapWithCriticalSections>();
}
