#pragma once

#include <cstddef>

// The C library's own allocator, under the names by which it can be reached from a replacement.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}

namespace CAllocator {

/// What every block is aligned to at least.
constexpr std::size_t kAlignment = 16;

/// What malloc_usable_size() says where nobody replaces it. May allocate at its first call.
std::size_t usableSize(void* block);

} // namespace CAllocator
