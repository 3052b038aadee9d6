#include "Shared/MemoryCalls.h"

#include <cerrno>
#include <cstddef>
#include <cstring>
#include <ctime>
#include <sys/mman.h>

namespace {

struct Refusal
{
    const char* name;
    int skip;
    int times;
    int refused;
};

thread_local Refusal planned;
thread_local std::int64_t stoppedAtMs; // 0: the clock runs

bool refuse(const char* name)
{
    if (!planned.name || std::strcmp(planned.name, name) != 0)
        return false;
    if (planned.skip-- > 0 || planned.refused == planned.times)
        return false;
    ++planned.refused;
    errno = ENOMEM;
    return true;
}

} // namespace

RefusedMemory::RefusedMemory(const char* name, int skip, int times)
{
    planned = {name, skip, times, 0};
}

RefusedMemory::~RefusedMemory()
{
    planned = {};
}

int RefusedMemory::refused() const
{
    return planned.refused;
}

StoppedClock::StoppedClock()
{
    stoppedAtMs = 1'000'000'000;
}

StoppedClock::~StoppedClock()
{
    stoppedAtMs = 0;
}

void StoppedClock::advance(std::int64_t milliseconds)
{
    stoppedAtMs += milliseconds;
}

extern "C" {

void* __real_mmap(void* address, std::size_t length, int protection, int flags, int file,
                  off_t offset);
void* __wrap_mmap(void* address, std::size_t length, int protection, int flags, int file,
                  off_t offset)
{
    return refuse("mmap") ? MAP_FAILED
                          : __real_mmap(address, length, protection, flags, file, offset);
}

int __real_mprotect(void* address, std::size_t length, int protection);
int __wrap_mprotect(void* address, std::size_t length, int protection)
{
    return refuse("mprotect") ? -1 : __real_mprotect(address, length, protection);
}

void* __real_malloc(std::size_t size);
void* __wrap_malloc(std::size_t size)
{
    return refuse("malloc") ? nullptr : __real_malloc(size);
}

int __real_clock_gettime(clockid_t clock, timespec* now);
int __wrap_clock_gettime(clockid_t clock, timespec* now)
{
    if (stoppedAtMs == 0)
        return __real_clock_gettime(clock, now);
    *now = {stoppedAtMs / 1000, stoppedAtMs % 1000 * 1'000'000};
    return 0;
}

} // extern "C"
