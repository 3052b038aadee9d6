#include "support/LargeObjectRows.h"

#include "support/PairedRuns.h"

#include "OS/Shared/FreeRanges.h"

#include <OS/Shared/MTHeap.h>

#include <cstring>
#include <iterator>
#include <malloc.h>
#include <map>
#include <random>
#include <set>
#include <sys/wait.h>
#include <unistd.h>

namespace Bench {

namespace {

using Tq::MemAlloc;

constexpr std::uint64_t kPool = std::uint64_t(1) << 40;
std::byte* const kBase = reinterpret_cast<std::byte*>(std::uintptr_t(1) << 40);

// The pool's books as described: one set by address that is walked, one map of blocks.
class PlainPool
{
public:
    PlainPool() { free_.insert({kBase, kPool}); }

    std::byte* alloc(std::uint64_t size)
    {
        auto best = free_.end();
        for (auto range = free_.begin(); range != free_.end(); ++range)
            if (range->size >= size && (best == free_.end() || range->size < best->size)) {
                best = range;
                if (range->size == size)
                    break;
            }
        MemAlloc range = *best;
        free_.erase(best);
        if (range.size > size)
            free_.insert({range.addr + size, range.size - size});
        used_[range.addr] = size;
        return range.addr;
    }

    void free(std::byte* block)
    {
        const auto found = used_.find(block);
        MemAlloc range{block, found->second};
        used_.erase(found);
        auto next = free_.lower_bound(range);
        if (next != free_.begin() && std::prev(next)->end() == block) {
            const auto previous = std::prev(next);
            range = {previous->addr, previous->size + range.size};
            free_.erase(previous);
        }
        if (next != free_.end() && next->addr == range.end()) {
            range.size += next->size;
            free_.erase(next);
        }
        free_.insert(range);
    }

private:
    std::set<MemAlloc, Tq::compT> free_;
    std::map<std::byte*, std::uint64_t> used_;
};

// The same by the parts that the heap is made of.
class IndexedPool
{
public:
    IndexedPool() { free_.start({kBase, kPool}); }

    std::byte* alloc(std::uint64_t size)
    {
        const auto range = free_.bestFit(size);
        const MemAlloc block{range->addr, size};
        used_.insert(block);
        free_.takeFront(range, size);
        return block.addr;
    }
    void free(std::byte* block) { free_.putBack(used_.extract(used_.find(block))); }

private:
    Tq::FreeRanges free_;
    Tq::RangesByAddress used_;
};

// So many free ranges lie between blocks; then blocks are taken and given back.
template <class Pool>
double cost(std::size_t ranges, int rounds)
{
    Pool pool;
    std::minstd_rand random(5);
    const auto someSize = [&] { return 32768 + random() % 65536 * 16; };
    std::vector<std::byte*> gaps;
    for (std::size_t i = 0; i < ranges; ++i) {
        gaps.push_back(pool.alloc(someSize()));
        pool.alloc(48);
    }
    std::shuffle(gaps.begin(), gaps.end(), random);
    for (std::byte* gap : gaps)
        pool.free(gap);
    std::vector<std::uint64_t> sizes;
    for (int i = 0; i < rounds; ++i)
        sizes.push_back(someSize());
    return timed(rounds, [&] {
        for (const std::uint64_t size : sizes)
            pool.free(pool.alloc(size));
    });
}

constexpr std::size_t kFrame = 8'294'400;

enum class Use
{
    eNothing,
    eTouch,
    eFill
};

// @return microseconds
template <class Allocator>
double frames(const Allocator& allocator, Use use)
{
    const int rounds = use == Use::eNothing ? 2000 : 20;
    return timed(rounds,
                 [&] {
                     for (int i = 0; i < rounds; ++i) {
                         auto* frame = static_cast<volatile char*>(allocator.alloc(kFrame));
                         if (use == Use::eTouch)
                             for (std::size_t at = 0; at < kFrame; at += 4096)
                                 frame[at] = 1;
                         else if (use == Use::eFill)
                             std::memset(const_cast<char*>(frame), i, kFrame);
                         allocator.free(const_cast<char*>(frame));
                     }
                 }) /
           1000.0;
}

} // namespace

void benchFreeRanges()
{
    printHeader("Large objects: taking and giving back a block, without the system's calls");
    struct Row
    {
        std::size_t ranges;
        int rounds;
        double aim;
    };
    for (const Row& row : {Row{10, 100'000, 1.3}, Row{10'000, 300, 0.02}, Row{100'000, 50, 0.01}})
        compare(std::to_string(row.ranges) + " free ranges",
                {{"FreeRanges", [&] { return cost<IndexedPool>(row.ranges, row.rounds); }},
                 {"plain walk", [&] { return cost<PlainPool>(row.ranges, row.rounds); }}},
                {{{"plain walk"}, row.aim}});
}

void benchFrames(const std::vector<PeerAllocator>& peers, bool returning)
{
    if (returning)
        mallopt(M_MMAP_THRESHOLD, 128 * 1024);
    printHeader(returning ? "8 MB: allocate, use, release; peers set to give memory back"
                          : "8 MB: allocate, use, release; peers as they come",
                "us");
    Tq::MTHeap heap;
    const OurAllocator ours(heap);
    std::vector<std::string> names;
    for (const auto& peer : peers)
        names.push_back(peer.name());
    struct Row
    {
        const char* what;
        Use use;
    };
    for (const Row& row : {Row{"a byte of every page", Use::eTouch}, Row{"every byte", Use::eFill},
                           Row{"nothing", Use::eNothing}}) {
        std::vector<Contender> contenders{{"MTHeap", [&] { return frames(ours, row.use); }}};
        for (const auto& peer : peers)
            contenders.push_back({peer.name(), [&] { return frames(peer, row.use); }});
        std::vector<Goal> goals{{names, returning && row.use == Use::eTouch ? 0.4 : 0}};
        for (const std::string& name : names)
            goals.push_back({{name}, 0});
        compare(row.what, contenders, goals);
    }
}

int runAgain(const char* argument)
{
    std::fflush(stdout);
    const pid_t child = fork();
    if (child == 0) {
        execl("/proc/self/exe", "HeapBench", argument, static_cast<char*>(nullptr));
        _exit(1);
    }
    int status = 1;
    waitpid(child, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}

} // namespace Bench
