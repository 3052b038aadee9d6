// The calls that a replacement of the C allocator defines in terms of others of its own.

#include "CAllocator.h"

#include <cerrno>
#include <cstdlib>
#include <dlfcn.h>
#include <malloc.h>

std::size_t CAllocator::usableSize(void* block)
{
    static const auto original =
        reinterpret_cast<std::size_t (*)(void*)>(dlsym(RTLD_NEXT, "malloc_usable_size"));
    return original ? original(block) : 0;
}

extern "C" {

[[gnu::visibility("default")]] void* reallocarray(void* block, std::size_t count, std::size_t size)
{
    std::size_t bytes = 0;
    if (__builtin_mul_overflow(count, size, &bytes)) {
        errno = ENOMEM;
        return nullptr;
    }
    return realloc(block, bytes);
}

[[gnu::visibility("default")]] void* aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

[[gnu::visibility("default")]] int posix_memalign(void** result, std::size_t alignment,
                                                  std::size_t size)
{
    if (alignment < sizeof(void*) || (alignment & (alignment - 1)) != 0)
        return EINVAL;
    const int error = errno;
    void* block = memalign(alignment, size);
    errno = error;
    if (!block)
        return ENOMEM;
    *result = block;
    return 0;
}
}
