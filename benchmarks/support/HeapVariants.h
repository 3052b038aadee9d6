#pragma once

#include <OS/Shared/iHeap.h>

#include <memory>

/// The binned heap built with other locks, to measure what they cost.
namespace Bench {

std::unique_ptr<iHeap> makeHeapWithoutLocks(); ///< for one thread
std::unique_ptr<iHeap> makeHeapWithCriticalSections();

} // namespace Bench
