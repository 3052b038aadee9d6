// The process's operator new and delete, routed to the root's heap. Exported on purpose, without a
// symbol version, so that the C++ library's own calls arrive here too.

#include <OS.h>
#include <OS/Shared/iHeap.h>

#include <OS/Core/LightweightString.h>

#include <cstdlib>
#include <new>

namespace {

// One allocation with the retries that the language asks for: the new-handler may free something.
template <class Allocate>
void* allocateOrThrow(Allocate allocate)
{
    for (;;) {
        if (void* block = allocate())
            return block;
        const std::new_handler handler = std::get_new_handler();
        if (!handler)
            throw std::bad_alloc();
        handler();
    }
}

void* allocate(std::size_t size)
{
    return allocateOrThrow([size] { return Tq::detail::stringHeap()->alloc(size); });
}

// Aligned blocks come from the C allocator, which releases them by the same call as the others.
void* allocateAligned(std::size_t size, std::align_val_t alignment)
{
    return allocateOrThrow([=]() -> void* {
        void* block = nullptr;
        return posix_memalign(&block, static_cast<std::size_t>(alignment), size ? size : 1) == 0
                   ? block
                   : nullptr;
    });
}

} // namespace

#pragma GCC visibility push(default)

void* operator new(std::size_t size)
{
    return allocate(size);
}
void* operator new[](std::size_t size)
{
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept
try {
    return operator new(size);
} catch (...) {
    return nullptr;
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
try {
    return operator new(size);
} catch (...) {
    return nullptr;
}
void* operator new(std::size_t size, std::align_val_t alignment)
{
    return allocateAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return operator new(size, alignment);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept
try {
    return operator new(size, alignment);
} catch (...) {
    return nullptr;
}
void* operator new[](std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept
try {
    return operator new(size, alignment);
} catch (...) {
    return nullptr;
}

void operator delete(void* block) noexcept
{
    Tq::detail::stringHeap()->deAlloc(block);
}
void operator delete[](void* block) noexcept
{
    operator delete(block);
}
void operator delete(void* block, std::size_t) noexcept
{
    operator delete(block);
}
void operator delete[](void* block, std::size_t) noexcept
{
    operator delete(block);
}
void operator delete(void* block, const std::nothrow_t&) noexcept
{
    operator delete(block);
}
void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    operator delete(block);
}
void operator delete(void* block, std::align_val_t) noexcept
{
    operator delete(block);
}
void operator delete[](void* block, std::align_val_t) noexcept
{
    operator delete(block);
}
void operator delete(void* block, std::size_t, std::align_val_t) noexcept
{
    operator delete(block);
}
void operator delete[](void* block, std::size_t, std::align_val_t) noexcept
{
    operator delete(block);
}
void operator delete(void* block, std::align_val_t, const std::nothrow_t&) noexcept
{
    operator delete(block);
}
void operator delete[](void* block, std::align_val_t, const std::nothrow_t&) noexcept
{
    operator delete(block);
}

#pragma GCC visibility pop
