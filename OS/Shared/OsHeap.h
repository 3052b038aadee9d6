#pragma once

#include <OS/Shared/Heap.h>

namespace Tq {

/// The heap of the root object: the C allocator for blocks.
class OsHeap final : public Heap
{
public:
    ~OsHeap() override;
    void* alloc(std::size_t size) override;
    void* reAlloc(void* block, std::size_t size) override;
    void deAlloc(void* block) override;
    bool isPointerValid(const void* block) const override;
};

} // namespace Tq
