#pragma once

#include <cstddef>
#include <cstdlib>
#include <new>

namespace Tq {

/// A standard allocator straight on the C allocator, for what must never come back into a heap of
/// ours.
template <class T>
struct ProcessHeapAllocator
{
    using value_type = T;

    ProcessHeapAllocator() = default;
    template <class U>
    ProcessHeapAllocator(const ProcessHeapAllocator<U>&) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        if (void* block = count <= static_cast<std::size_t>(-1) / sizeof(T)
                              ? std::malloc(count * sizeof(T))
                              : nullptr)
            return static_cast<T*>(block);
        throw std::bad_alloc();
    }
    void deallocate(T* block, std::size_t) noexcept { std::free(block); }

    friend bool operator==(const ProcessHeapAllocator&, const ProcessHeapAllocator&)
    {
        return true;
    }
};

} // namespace Tq
