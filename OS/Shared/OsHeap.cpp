#include "OS/Shared/OsHeap.h"

#include <cstdlib>

namespace Tq {

OsHeap::~OsHeap() = default;

void* OsHeap::alloc(std::size_t size)
{
    return std::malloc(size);
}

void* OsHeap::reAlloc(void* block, std::size_t size)
{
    return std::realloc(block, size);
}

void OsHeap::deAlloc(void* block)
{
    std::free(block);
}

bool OsHeap::isPointerValid(const void*) const
{
    return true;
}

} // namespace Tq
