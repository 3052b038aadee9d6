#pragma once

#include <cstdint>
#include <functional>

/// The system calls of the heaps under the tests' control. The linker sends the calls that the
/// static library makes through here (see tests/CMakeLists.txt); everything acts on the calling
/// thread only.

/// Makes calls fail with ENOMEM, for the life of a scope.
class RefusedMemory
{
public:
    /// @param name "mmap", "mprotect" or "malloc"
    /// @param skip how many calls of it succeed first @param times how many fail then
    explicit RefusedMemory(const char* name, int skip = 0, int times = 1'000'000);
    ~RefusedMemory();
    RefusedMemory(const RefusedMemory&) = delete;
    RefusedMemory& operator=(const RefusedMemory&) = delete;

    /// How many calls failed.
    int refused() const;
};

/// A monotonic clock that stands still, for the life of a scope.
class StoppedClock
{
public:
    StoppedClock();
    ~StoppedClock();
    StoppedClock(const StoppedClock&) = delete;
    StoppedClock& operator=(const StoppedClock&) = delete;

    void advance(std::int64_t milliseconds);
};
