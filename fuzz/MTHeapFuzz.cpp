// Any sequence of allocations, resizes and releases on two heaps, against a model: contents,
// alignment, the size before each block, and no two blocks that overlap.

#include "OS/Shared/TqLargeObjectHeap.h"

#include <OS/Shared/MTHeap.h>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>

namespace {

using Tq::MTHeap;

void require(bool condition)
{
    if (!condition)
        std::abort();
}

struct Block
{
    std::size_t size;
    unsigned char mark;
    unsigned int heap;
};

class Input
{
public:
    Input(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    bool empty() const { return at_ == end_; }
    unsigned int byte() { return at_ == end_ ? 0u : *at_++; }
    // Small ones, those at a bin's edges, those about the two thresholds, and large ones.
    std::size_t size()
    {
        const std::size_t value = byte() | byte() << 8;
        switch (byte() % 4) {
        case 0:
            return value % 300;
        case 1:
            return std::max<std::size_t>(value % 2048 * 16 + 12 + value / 2048 % 3, 1) - 1;
        case 2:
            return 32760 + value % 16;
        default:
            return value * 5;
        }
    }

private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

class Model
{
public:
    void take(unsigned int heap, void* block, std::size_t size, unsigned char mark)
    {
        auto* start = static_cast<unsigned char*>(block);
        require(reinterpret_cast<std::uintptr_t>(start) % 16 == 0);
        const auto next = blocks_.lower_bound(start);
        require(next == blocks_.end() || start + size + 4 <= next->first);
        require(next == blocks_.begin() ||
                std::prev(next)->first + std::prev(next)->second.size + 4 <= start);
        std::memset(start, mark, size);
        blocks_[start] = {size, mark, heap};
        require(header(start) == size);
    }
    auto choose(unsigned int index)
    {
        return std::next(blocks_.begin(), static_cast<std::ptrdiff_t>(index % blocks_.size()));
    }
    static void check(const unsigned char* start, std::size_t size, unsigned char mark)
    {
        require(std::all_of(start, start + size, [=](unsigned char c) { return c == mark; }));
    }
    static std::uint32_t header(const unsigned char* start)
    {
        std::uint32_t size;
        std::memcpy(&size, start - 4, sizeof size);
        return size;
    }

    std::map<unsigned char*, Block> blocks_;
};

void resize(MTHeap& heap, Model& model, unsigned int index, std::size_t size, unsigned char mark)
{
    const auto found = model.choose(index);
    auto* const start = found->first;
    const Block old = found->second;
    Model::check(start, old.size, old.mark);
    const std::uint32_t oldHeader = Model::header(start);
    model.blocks_.erase(found);
    auto* const moved = static_cast<unsigned char*>(heap.reAlloc(start, size));
    require(moved != nullptr);
    Model::check(moved, std::min(size, old.size), old.mark);
    if (MTHeap::getBinIndexFromSize(oldHeader) != MTHeap::kNoBin) {
        const std::uint32_t bin = MTHeap::getBinIndexFromSize(oldHeader);
        require((moved == start) == (size <= MTHeap::getBinFreeSize(bin)));
        require(MTHeap::getBinIndexFromSize(Model::header(moved)) ==
                (moved == start ? bin : MTHeap::getBinIndexFromSize(size)));
        if (moved == start && Model::header(moved) != size) {
            // The smallest size of the bin stands for a smaller one.
            require(Model::header(moved) == 16 * bin - 3 && size < 16 * bin - 3);
            std::memset(moved, mark, size);
            model.blocks_[moved] = {size, mark, old.heap};
            return;
        }
    }
    model.take(old.heap, moved, size, mark);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto first = std::make_unique<MTHeap>();
    const auto second = std::make_unique<MTHeap>();
    MTHeap* const heaps[] = {first.get(), second.get()};
    Model model;
    Input input(data, size);
    unsigned char mark = 0;
    while (!input.empty()) {
        const unsigned int operation = input.byte();
        const unsigned int index = input.byte();
        ++mark;
        if (model.blocks_.empty() || operation % 4 < 2) {
            const std::size_t wanted = input.size();
            model.take(index % 2, heaps[index % 2]->alloc(wanted), wanted, mark);
        } else if (operation % 4 == 2) {
            MTHeap& heap = *heaps[model.choose(index)->second.heap];
            resize(heap, model, index, input.size(), mark);
        } else {
            const auto found = model.choose(index);
            Model::check(found->first, found->second.size, found->second.mark);
            heaps[found->second.heap]->deAlloc(found->first);
            model.blocks_.erase(found);
        }
    }
    for (const auto& [start, block] : model.blocks_) {
        Model::check(start, block.size, block.mark);
        heaps[block.heap]->deAlloc(start);
    }
    require(Heap::getHeapStats()->counters[1] == 0);
    return 0;
}
