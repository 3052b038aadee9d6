// Any sequence of operations on a large-object heap, against a model that walks: the choice of a
// range, what is free, what is used, and the contents.

#include "OS/Shared/TqLargeObjectHeap.h"

#include <OS/Shared/Heap.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>

namespace {

constexpr std::uint64_t kPool = 4 << 20;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    bool empty() const { return at_ == end_; }
    unsigned int byte() { return at_ == end_ ? 0u : *at_++; }
    std::uint64_t size()
    {
        const std::uint64_t value = byte() | byte() << 8;
        return value % 4 == 0 ? value * 8 : value % 8192;
    }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

// The books as they are described: free and used ranges by address.
struct Model
{
    using Ranges = std::map<std::byte*, std::uint64_t>;

    std::byte* bestFit(std::uint64_t size) const
    {
        std::byte* best = nullptr;
        std::uint64_t smallest = 0;
        for (const auto& [start, length] : free)
            if (length >= size && (!best || length < smallest)) {
                best = start;
                smallest = length;
            }
        return best;
    }
    void take(std::byte* start, std::uint64_t size)
    {
        const std::uint64_t length = free.at(start);
        free.erase(start);
        if (length > size)
            free[start + size] = length - size;
    }
    void putBack(std::byte* start, std::uint64_t size)
    {
        auto next = free.lower_bound(start);
        if (next != free.end() && next->first == start + size) {
            size += next->second;
            next = free.erase(next);
        }
        if (next != free.begin() && std::prev(next)->first + std::prev(next)->second == start) {
            std::prev(next)->second += size;
            return;
        }
        free[start] = size;
    }

    Ranges free;
    Ranges used;
};

class Session
{
public:
    Session() { model_.free[const_cast<std::byte*>(heap_.memBase())] = kPool; }
    ~Session()
    {
        while (!model_.used.empty())
            release(0);
        require(heap_.freePool().size() == 1);
    }

    bool hasBlocks() const { return !model_.used.empty(); }

    void allocate(std::uint64_t size)
    {
        const std::uint64_t rounded = size + 16 - size % 16;
        std::byte* const expected = model_.bestFit(rounded);
        auto* const block = static_cast<std::byte*>(heap_.Alloc(size));
        if (!expected) {
            require(!heap_.Validate(block));
            std::memset(block, 1, size);
            heap_.Free(block);
            return;
        }
        require(block == expected && heap_.Size(block) == rounded);
        model_.take(block, rounded);
        fill(block, rounded);
    }

    void release(unsigned int index)
    {
        const auto block = choose(index);
        check(block->first, block->second);
        heap_.Free(block->first);
        model_.putBack(block->first, block->second);
        model_.used.erase(block);
    }

    void resize(unsigned int index, std::uint64_t size)
    {
        const auto [block, oldSize] = *choose(index);
        check(block, oldSize);
        const auto behind = model_.free.find(block + oldSize);
        const std::uint64_t room = behind == model_.free.end() ? 0 : behind->second;
        const std::byte mark = block[0];
        if (size > oldSize && room < size - oldSize && !model_.bestFit(size + 16 - size % 16))
            return; // it would go to the C allocator for good
        auto* const moved = static_cast<std::byte*>(heap_.Realloc(block, size));
        const std::uint64_t newSize = heap_.Size(moved);
        require(newSize >= size);
        if (size <= oldSize) {
            require(moved == block && newSize == oldSize);
            return;
        }
        check(moved, oldSize, mark);
        model_.used.erase(block);
        if (room >= size - oldSize) {
            require(moved == block);
            require(newSize - oldSize == room || (room >= 2 * size && newSize < size + 16));
            model_.take(block + oldSize, newSize - oldSize);
        } else {
            require(moved == model_.bestFit(newSize) && newSize == size + 16 - size % 16);
            model_.take(moved, newSize);
            model_.putBack(block, oldSize);
        }
        fill(moved, newSize);
    }

    void refuse(unsigned int offset)
    {
        auto* const place = const_cast<std::byte*>(heap_.memBase()) + offset * 16;
        if (!model_.used.contains(place)) {
            heap_.Free(place);
            require(heap_.Realloc(place, 100) == nullptr);
        }
    }

    void compareBooks() const
    {
        std::uint64_t used = 0;
        for (const auto& [start, size] : model_.used)
            used += size;
        require(Heap::getHeapStats()->counters[1] == used);
        require(heap_.freePool().size() == model_.free.size());
        auto expected = model_.free.begin();
        const std::byte* last = nullptr;
        for (const Tq::MemAlloc& range : heap_.freePool()) {
            require(range.addr == expected->first && range.size == expected->second);
            require(range.addr != last);
            last = range.end();
            used += range.size;
            ++expected;
        }
        require(used == kPool);
    }

private:
    Model::Ranges::iterator choose(unsigned int index)
    {
        return std::next(model_.used.begin(),
                         static_cast<std::ptrdiff_t>(index % model_.used.size()));
    }
    void fill(std::byte* block, std::uint64_t size)
    {
        model_.used[block] = size;
        std::memset(block, ++mark_, size);
    }
    static void check(const std::byte* block, std::uint64_t size) { check(block, size, block[0]); }
    static void check(const std::byte* block, std::uint64_t size, std::byte mark)
    {
        require(block[0] == mark && std::memcmp(block, block + 1, size - 1) == 0);
    }

    Tq::LargeObjectHeap heap_{kPool};
    Model model_;
    unsigned char mark_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1; // foreign releases are reported there
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Session session;
    Input input(data, size);
    while (!input.empty()) {
        const unsigned int operation = input.byte() % 16;
        const unsigned int index = input.byte();
        if (operation < 8 || !session.hasBlocks())
            session.allocate(input.size());
        else if (operation < 12)
            session.release(index);
        else if (operation < 15)
            session.resize(index, input.size());
        else
            session.refuse(index);
        session.compareBooks();
    }
    return 0;
}
