#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstdint>
#include <memory>

namespace OSInternal {

/// A queue of packets between two threads that neither locks nor allocates: one pushes, one pops.
class PacketRing
{
public:
    /// @param capacity bytes, lengths included; made a power of two
    explicit PacketRing(std::size_t capacity)
        : mask_(std::bit_ceil(capacity) - 1), bytes_(new unsigned char[mask_ + 1])
    {
    }

    /// @return false when there is no room: nothing is kept then
    bool push(const unsigned char* data, std::uint32_t length)
    {
        const std::size_t end = end_.load(std::memory_order_relaxed);
        if (mask_ + 1 - (end - begin_.load(std::memory_order_acquire)) < sizeof length + length)
            return false;
        copyIn(end, reinterpret_cast<const unsigned char*>(&length), sizeof length);
        copyIn(end + sizeof length, data, length);
        end_.store(end + sizeof length + length, std::memory_order_release);
        return true;
    }

    /// @return whether a packet waits @param length its length
    bool peek(std::uint32_t& length) const
    {
        const std::size_t begin = begin_.load(std::memory_order_relaxed);
        if (begin == end_.load(std::memory_order_acquire))
            return false;
        copyOut(begin, reinterpret_cast<unsigned char*>(&length), sizeof length);
        return true;
    }

    /// After a peek. @param data room for its length
    void pop(unsigned char* data, std::uint32_t length)
    {
        const std::size_t begin = begin_.load(std::memory_order_relaxed);
        copyOut(begin + sizeof length, data, length);
        begin_.store(begin + sizeof length + length, std::memory_order_release);
    }

    /// Bytes in use, lengths included.
    std::size_t used() const
    {
        const std::size_t begin = begin_.load(std::memory_order_acquire);
        return end_.load(std::memory_order_acquire) - begin;
    }

private:
    void copyIn(std::size_t at, const unsigned char* from, std::size_t count)
    {
        const std::size_t first = std::min(count, mask_ + 1 - (at & mask_));
        std::copy_n(from, first, bytes_.get() + (at & mask_));
        std::copy_n(from + first, count - first, bytes_.get());
    }
    void copyOut(std::size_t at, unsigned char* to, std::size_t count) const
    {
        const std::size_t first = std::min(count, mask_ + 1 - (at & mask_));
        std::copy_n(bytes_.get() + (at & mask_), first, to);
        std::copy_n(bytes_.get(), count - first, to + first);
    }

    const std::size_t mask_;
    const std::unique_ptr<unsigned char[]> bytes_;
    std::atomic<std::size_t> begin_{0}; // both only grow; the place is their lower bits
    std::atomic<std::size_t> end_{0};
};

} // namespace OSInternal
