#pragma once

#include <cstdint>

/// A recorded run of a program: a header, then one record for every call of its allocator, in the
/// order in which they happened. HeapRecorder.cpp writes it, ReplayTest.cpp reads it.
namespace Trace {

constexpr char kMagic[8] = {'H', 'E', 'A', 'P', 'R', 'U', 'N', '1'};

enum class Call : std::uint8_t
{
    eAlloc,
    eAligned, // with an alignment above 16
    eResize,
    eRelease
};

struct Header
{
    char magic[8];
    char program[56]; // the file's name, with a zero behind it
};

struct Record
{
    std::uint32_t block;  // counted from 0 in the order in which the blocks were made
    std::uint16_t thread; // counted from 0 in the order of each thread's first call
    Call call;
    std::uint8_t alignmentLog2; // eAligned only
    std::uint64_t size;         // asked for; of a release 0
};

static_assert(sizeof(Header) == 64 && sizeof(Record) == 16);

} // namespace Trace
