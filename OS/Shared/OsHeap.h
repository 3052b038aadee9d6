#pragma once

#include <OS/Shared/Heap.h>

namespace Tq {

class DebugHeap;

/// The heap of the root object: the C allocator for blocks, unless it hands them to a debug heap.
class OsHeap final : public Heap
{
public:
    ~OsHeap() override;
    void* alloc(std::size_t size) override;
    void* reAlloc(void* block, std::size_t size) override;
    void deAlloc(void* block) override;
    /// As Heap's; with a debug heap, its leaks, too.
    void report() override;
    /// True for anything; with a debug heap, false for what it knows to be no live block.
    bool isPointerValid(const void* block) const override;

    /// From now on blocks come from a debug heap (TqHeap_Debug.h) if the environment asks for one:
    /// VANTOR_DEBUG_HEAP=1. What was allocated before is still released as it must be.
    void useDebugHeapIfAsked();

private:
    DebugHeap* debugHeap_ = nullptr; // lives as long as the process
};

} // namespace Tq
