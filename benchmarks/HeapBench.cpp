// The heap for many threads and the one for large objects against the allocators that programs use.
// Rows with two threads use the first two processors, one each; the others the first.
#include "support/Allocators.h"
#include "support/HeapVariants.h"
#include "support/LargeObjectRows.h"
#include "support/PairedRuns.h"

#include "OS/Mac/Threads/CriticalSection.h"
#include "OS/Shared/TestAndSetLock.h"

#include <OS/Shared/MTHeap.h>

#include <array>
#include <atomic>
#include <cstring>
#include <fstream>
#include <functional>
#include <memory>
#include <pthread.h>
#include <random>
#include <sched.h>
#include <thread>

namespace {

using Bench::Contender;
using Bench::Goal;

void pinTo(int cpu)
{
    cpu_set_t set;
    CPU_ZERO(&set);
    CPU_SET(cpu, &set);
    pthread_setaffinity_np(pthread_self(), sizeof set, &set);
}

constexpr int kPairs = 1'000'000;

template <class Allocator>
double pairs(const Allocator& allocator, std::size_t size, int count = kPairs)
{
    return Bench::timed(count, [&] {
        for (int i = 0; i < count; ++i) {
            void* block = allocator.alloc(size);
            Bench::keep(block);
            allocator.free(block);
        }
    });
}

template <class Allocator>
double batches(const Allocator& allocator, std::size_t size, int count = kPairs)
{
    std::array<void*, 100> blocks;
    return Bench::timed(count, [&] {
        for (int i = 0; i < count; i += 100) {
            for (void*& block : blocks)
                block = allocator.alloc(size);
            for (void* block : blocks)
                allocator.free(block);
        }
    });
}

// Runs the same on two processors. @return the slower one's cost
double onTwo(const std::function<double(int)>& work)
{
    std::atomic<int> ready{0};
    const auto run = [&](int cpu) {
        pinTo(cpu);
        ++ready;
        while (ready != 2)
            __builtin_ia32_pause();
        return work(cpu);
    };
    double other = 0;
    std::thread second([&] { other = run(1); });
    const double own = run(0);
    second.join();
    return std::max(own, other);
}

template <class Allocator>
double handOver(const Allocator& allocator)
{
    constexpr std::size_t kSlots = 1024;
    constexpr std::size_t kBlocks = 1'000'000;
    struct Ring
    {
        alignas(64) std::atomic<std::size_t> written{0};
        alignas(64) std::atomic<std::size_t> read{0};
        std::array<void*, kSlots> slots;
    };
    const auto ring = std::make_unique<Ring>();
    return onTwo([&](int cpu) {
        return Bench::timed(kBlocks, [&] {
            for (std::size_t i = 0; i < kBlocks; ++i)
                if (cpu == 0) {
                    while (i - ring->read.load(std::memory_order_acquire) == kSlots)
                        __builtin_ia32_pause();
                    void* block = allocator.alloc(32 + i % 256);
                    *static_cast<std::size_t*>(block) = i;
                    ring->slots[i % kSlots] = block;
                    ring->written.store(i + 1, std::memory_order_release);
                } else {
                    while (ring->written.load(std::memory_order_acquire) == i)
                        __builtin_ia32_pause();
                    Bench::keep(*static_cast<std::size_t*>(ring->slots[i % kSlots]));
                    allocator.free(ring->slots[i % kSlots]);
                    ring->read.store(i + 1, std::memory_order_release);
                }
        });
    });
}

// Any of 10,000 blocks is replaced by one of another size.
template <class Allocator>
double workingSet(const Allocator& allocator)
{
    constexpr std::size_t kBlocks = 10'000;
    constexpr int kRounds = 1'000'000;
    std::minstd_rand random(7);
    std::vector<void*> blocks(kBlocks);
    for (void*& block : blocks)
        block = allocator.alloc(16 + random() % 4081);
    const double cost = Bench::timed(kRounds, [&] {
        for (int i = 0; i < kRounds; ++i) {
            void*& block = blocks[random() % kBlocks];
            allocator.free(block);
            block = allocator.alloc(16 + random() % 4081);
            *static_cast<int*>(block) = i;
        }
    });
    for (void* block : blocks)
        allocator.free(block);
    return cost;
}

// Every frame of an editor: descriptors that live for a frame, strings that live for some, and two
// picture buffers whose own cost is not counted here.
template <class Allocator>
double editorTrace(const Allocator& allocator)
{
    constexpr int kFrames = 400, kDescriptors = 600, kStrings = 200;
    std::minstd_rand random(11);
    std::vector<void*> descriptors(kDescriptors), strings(4 * kStrings, nullptr);
    double total = 0;
    std::size_t nextString = 0;
    for (int frame = 0; frame < kFrames; ++frame) {
        void* pictures[2] = {allocator.alloc(8'294'400), allocator.alloc(8'294'400)};
        total += Bench::timed(1, [&] {
            for (int i = 0; i < kDescriptors; ++i) {
                descriptors[static_cast<std::size_t>(i)] = allocator.alloc(40 + random() % 5 * 32);
                std::memset(descriptors[static_cast<std::size_t>(i)], 0, 40);
                if (i % 3 == 0) {
                    void*& text = strings[nextString++ % strings.size()];
                    allocator.free(text);
                    text = allocator.alloc(24 + random() % 100);
                    std::memset(text, 'a', 24);
                }
            }
            for (void* descriptor : descriptors)
                allocator.free(descriptor);
        });
        allocator.free(pictures[0]);
        allocator.free(pictures[1]);
    }
    for (void* text : strings)
        allocator.free(text);
    return total / (kFrames * (kDescriptors + kStrings));
}

class HeapRows
{
public:
    explicit HeapRows(const std::vector<Bench::PeerAllocator>& peers) : peers_(peers)
    {
        for (const auto& peer : peers_)
            names_.push_back(peer.name());
    }

    // @param work what to measure, called with any allocator
    template <class Work>
    void row(const std::string& what, double aim, Work work, bool twoThreads = false,
             double aimOfUnlocked = 0)
    {
        std::vector<Contender> contenders{{"MTHeap", [&] { return work(ours_); }}};
        for (const auto& peer : peers_)
            contenders.push_back({peer.name(), [&] { return work(peer); }});
        contenders.push_back({"mutexes", [&] { return work(withMutexes_); }});
        std::vector<Goal> goals{{names_, aim}};
        for (const std::string& name : names_)
            goals.push_back({{name}, 0});
        goals.push_back({{"mutexes"}, 0});
        if (!twoThreads) {
            contenders.push_back({"no locks", [&] { return work(unlocked_); }});
            goals.push_back({{"no locks"}, aimOfUnlocked});
        }
        Bench::compare(what, contenders, goals);
    }

private:
    const std::vector<Bench::PeerAllocator>& peers_;
    std::vector<std::string> names_;
    Tq::MTHeap heap_;
    std::unique_ptr<iHeap> heapWithMutexes_ = Bench::makeHeapWithCriticalSections();
    std::unique_ptr<iHeap> unlockedHeap_ = Bench::makeHeapWithoutLocks();
    Bench::OurAllocator ours_{heap_}, withMutexes_{*heapWithMutexes_}, unlocked_{*unlockedHeap_};
};

void benchBlocks(const std::vector<Bench::PeerAllocator>& peers)
{
    Bench::printHeader("Binned heap, one thread, per block");
    HeapRows rows(peers);
    for (const std::size_t size : {16, 64, 4096})
        rows.row("pair of " + std::to_string(size) + " B", 1.1,
                 [=](const auto& allocator) { return pairs(allocator, size); });
    for (const std::size_t size : {64, 1024})
        rows.row("batch of 100 of " + std::to_string(size) + " B", 1.15,
                 [=](const auto& allocator) { return batches(allocator, size); });
    rows.row(
        "10,000 blocks of 16..4096 B, any replaced", 1.8,
        [](const auto& allocator) { return workingSet(allocator); }, false, 1.25);
    rows.row("editor trace, small blocks", 1.1,
             [](const auto& allocator) { return editorTrace(allocator); });

    Bench::printHeader("Binned heap, two threads, per block");
    rows.row(
        "producer and consumer, 32..287 B", 0.85,
        [](const auto& allocator) { return handOver(allocator); }, true);
    const auto both = [&](const char* what, double aim, std::size_t first, std::size_t second,
                          bool batch) {
        rows.row(
            what, aim,
            [=](const auto& allocator) {
                return onTwo([&](int cpu) {
                    const std::size_t size = cpu ? second : first;
                    return batch ? batches(allocator, size) : pairs(allocator, size);
                });
            },
            true);
    };
    both("pairs of neighbouring bins", 1.1, 60, 76, false);
    both("pairs of far bins", 1.1, 60, 4000, false);
    both("pairs of one bin", 2.0, 60, 60, false);
    both("batches of one bin", 3.0, 60, 60, true);
}

// What one uncontended lock and unlock costs here.
void printLockFloor()
{
    std::ifstream info("/proc/cpuinfo");
    for (std::string line; std::getline(info, line);)
        if (line.starts_with("model name")) {
            std::printf("\n%s\n", line.c_str());
            break;
        }
    constexpr int kRounds = 5'000'000;
    const auto floor = [](auto lock, auto unlock) {
        std::vector<double> costs;
        for (int i = 0; i < 5; ++i)
            costs.push_back(Bench::timed(kRounds, [&] {
                for (int round = 0; round < kRounds; ++round) {
                    lock();
                    unlock();
                }
            }));
        return Bench::median(costs);
    };
    const std::unique_ptr<iCriticalSection> section =
        std::make_unique<OSInternal::CriticalSection>(0);
    iCriticalSection* hidden = section.get();
    asm volatile("" : "+r"(hidden));
    pthread_mutex_t mutex = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
    Tq::TestAndSetLock::Word word{0};
    std::printf(
        "\n| uncontended lock and unlock, ns | CriticalSection | recursive pthread mutex | "
        "test-and-set | none |\n|---|---|---|---|---|\n| | %.1f | %.1f | %.1f | %.1f |\n",
        floor([&] { hidden->lock(); }, [&] { hidden->unlock(); }),
        floor([&] { pthread_mutex_lock(&mutex); }, [&] { pthread_mutex_unlock(&mutex); }),
        floor([&] { Tq::TestAndSetLock::lock(word); }, [&] { Tq::TestAndSetLock::unlock(word); }),
        floor([&] { Bench::keep(word); }, [] {}));
}

} // namespace

int main(int count, char** arguments)
{
    // Room for the thread-local data of allocators that are loaded late.
    Bench::restartWith(arguments, "GLIBC_TUNABLES", "glibc.rtld.optional_static_tls=20000");
    pinTo(0);
    const auto peers = Bench::loadPeers();
    const bool returning = count > 1 && std::strcmp(arguments[1], "--returning") == 0;
    if (returning) {
        Bench::restartWith(arguments, "TCMALLOC_AGGRESSIVE_DECOMMIT", "1");
        Bench::restartWith(arguments, "MIMALLOC_DECOMMIT_DELAY", "0");
        Bench::benchFrames(peers, true);
        return 0;
    }
    printLockFloor();
    benchBlocks(peers);
    Bench::benchFreeRanges();
    Bench::benchFrames(peers, false);
    return Bench::runAgain("--returning");
}
