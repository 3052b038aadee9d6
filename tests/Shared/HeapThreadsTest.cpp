// The heaps under many threads, across fork, and where the system has no more to give.
#include "OS/Shared/BiasedLock.h"
#include "OS/Shared/TqLargeObjectHeap.h"

#include <OS.h>
#include <OS/Shared/MTHeap.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <limits>
#include <malloc.h>
#include <memory>
#include <random>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Tq::MTHeap;

// A block that knows what it must hold.
struct Marked
{
    std::uint32_t size;
    std::uint32_t mark;
};

Marked* makeMarked(iHeap& heap, std::uint32_t size, std::uint32_t mark)
{
    auto* block = static_cast<Marked*>(heap.alloc(size));
    std::memset(static_cast<void*>(block), static_cast<int>(mark & 0xFF), size);
    *block = {size, mark};
    return block;
}

bool isWhole(const Marked* block)
{
    const auto* bytes = reinterpret_cast<const unsigned char*>(block);
    for (std::uint32_t at = sizeof(Marked); at < block->size; ++at)
        if (bytes[at] != (block->mark & 0xFF))
            return false;
    return true;
}

// @return the exit status of a child that runs the code, or -1
int inChild(const std::function<int()>& code)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
        _exit(code());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

#ifdef OS_TESTS_UNDER_SANITIZER
constexpr int kRounds = 3'000;
#else
constexpr int kRounds = 40'000;
#endif

} // namespace

TEST(HeapThreads, BlocksCrossThreadsWhole)
{
    MTHeap heaps[2];
    // A board of places; every thread puts blocks there and takes those of others.
    struct Place
    {
        std::atomic<Marked*> block[2] = {nullptr, nullptr};
    };
    std::array<Place, 64> board;
    std::atomic<int> broken{0};
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= 8; ++seed) // far more than processors
        threads.emplace_back([&, seed] {
            std::minstd_rand random(seed);
            for (int i = 0; i < kRounds; ++i) {
                const unsigned int which = random() % 2;
                const auto limit = random() % 50 == 0 ? 100'000u : 300u;
                const auto size = static_cast<std::uint32_t>(sizeof(Marked) + random() % limit);
                Marked* mine = makeMarked(heaps[which], size, seed * 31 + static_cast<unsigned>(i));
                Marked* old = board[random() % board.size()].block[which].exchange(mine);
                if (!old)
                    continue;
                broken += !isWhole(old);
                if (random() % 4 == 0) {
                    const std::uint32_t grown = old->size + 200;
                    const std::uint32_t kept = old->size;
                    old = static_cast<Marked*>(heaps[which].reAlloc(old, grown));
                    broken += old->size != kept || !isWhole(old);
                }
                heaps[which].deAlloc(old);
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(broken, 0);
    for (Place& place : board)
        for (int which : {0, 1})
            if (Marked* block = place.block[which]) {
                EXPECT_TRUE(isWhole(block));
                heaps[which].deAlloc(block);
            }
}

TEST(HeapThreads, ABinLockKeepsEveryOtherThreadOut)
{
    Tq::BiasedLock::State state;
    long long count = 0; // guarded by it
    constexpr int kTurns = 30 * kRounds;
    // Long turns of one thread and short ones of all: the bias comes, ends and comes back.
    const auto use = [&](int turns) {
        for (int i = 0; i < turns; ++i) {
            const auto hold = Tq::BiasedLock::lock(state);
            ++count;
            Tq::BiasedLock::unlock(state, hold);
        }
    };
    use(100);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&, i] {
            for (int turn = 0; turn < kTurns; turn += 10'000) {
                use(i == turn / 10'000 % 4 ? 9'997 : 1);
                std::this_thread::yield();
            }
        });
    long long expected = 100;
    for (int i = 0; i < 4; ++i)
        for (int turn = 0; turn < kTurns; turn += 10'000)
            expected += i == turn / 10'000 % 4 ? 9'997 : 1;
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(count, expected);
}

TEST(HeapThreads, ABinBelongsToTheThreadThatAloneUsesIt)
{
    using State = Tq::BiasedLock::State;
    State state;
    const auto use = [&](int times) {
        for (int i = 0; i < times; ++i)
            Tq::BiasedLock::unlock(state, Tq::BiasedLock::lock(state));
    };
    use(1);
    const std::uintptr_t own = state.owner;
    if (own == State::kShared)
        GTEST_SKIP() << "no lock is biased here";
    std::thread([&] { use(1); }).join();
    EXPECT_EQ(state.owner, State::kShared);
    use(10);
    EXPECT_EQ(state.owner, State::kShared) << "not yet";
    use(10'000);
    EXPECT_EQ(state.owner, own);
}

TEST(HeapThreads, AChildOfAForkCanUseEveryHeap)
{
    MTHeap first;
    const auto second = std::make_unique<MTHeap>();
    void* before = first.alloc(700);
    void* largeBefore = first.alloc(70'000);
    std::atomic<bool> stop{false};
    std::atomic<int> started{0};
    std::vector<std::thread> threads;
    for (std::uint32_t seed = 1; seed <= 4; ++seed)
        threads.emplace_back([&, seed] {
            std::minstd_rand random(seed);
            for (++started; !stop;) {
                iHeap& heap = random() % 2 ? first : *second;
                const std::size_t size = random() % 20 == 0 ? 100'000 : random() % 2000;
                void* block = heap.alloc(size);
                static_cast<char*>(block)[0] = 1;
                heap.deAlloc(heap.reAlloc(block, size * 2));
                const MTHeap passing; // heaps come and go meanwhile
            }
        });
    while (started != 4)
        std::this_thread::yield();
#ifdef OS_TESTS_UNDER_SANITIZER
    constexpr int kForks = 5;
#else
    constexpr int kForks = 12;
#endif
    for (int i = 0; i < kForks; ++i)
        ASSERT_EQ(inChild([&] {
                      alarm(60); // rather than hang
                      for (MTHeap* heap : {&first, second.get()})
                          for (std::size_t size = 0; size < 40'000; size += 97) {
                              void* block = heap->alloc(size);
                              std::memset(block, 3, size);
                              if (size % 7 == 0)
                                  heap->deAlloc(block);
                          }
                      first.deAlloc(before);
                      first.deAlloc(largeBefore);
                      MTHeap third;
                      return third.alloc(5) ? 7 : 8;
                  }),
                  7);
    stop = true;
    for (std::thread& thread : threads)
        thread.join();
    first.deAlloc(first.reAlloc(before, 5));
    first.deAlloc(largeBefore);
}

#ifndef OS_TESTS_UNDER_SANITIZER // they limit or exhaust what the sanitizers need themselves

TEST(HeapThreads, ALargeBlockIsWaitedForUntilAnotherThreadGivesBack)
{
    EXPECT_EQ(inChild([] {
                  alarm(60);
                  Tq::LargeObjectHeap heap(0); // everything from the C allocator
                  constexpr std::size_t kMost = std::size_t(600) << 20;
                  const rlimit limit{kMost, kMost};
                  MTHeap other;
                  std::vector<void*> hoard;
                  setrlimit(RLIMIT_DATA, &limit);
                  while (void* block = std::malloc(50'000'000))
                      hoard.push_back(block);
                  if (hoard.size() < 3)
                      return 1;
                  bool seen = false;
                  std::thread giver([&] {
                      while (!other.outOfMemory())
                          std::this_thread::yield();
                      seen = true;
                      for (void* block : hoard)
                          std::free(block);
                  });
                  void* block = heap.Alloc(90'000'000);
                  giver.join();
                  std::memset(block, 1, 90'000'000);
                  return seen && !other.outOfMemory() ? 7 : 2;
              }),
              7);
}

TEST(HeapThreads, ABinnedBlockEndsInBadAllocWhenTheAddressSpaceIsFull)
{
    EXPECT_EQ(inChild([] {
                  MTHeap heap;
                  const std::size_t size = 1000;
                  void* first = heap.alloc(size);
                  const rlimit none{1 << 20, 1 << 20};
                  setrlimit(RLIMIT_AS, &none);
                  try {
                      for (;;)
                          heap.alloc(size);
                  } catch (const std::bad_alloc&) {
                  }
                  heap.deAlloc(first);
                  return heap.alloc(size) == first ? 7 : 1;
              }),
              7);
}

TEST(HeapThreads, ProcessesRunOutOfMapsBeforeThePoolRunsOut)
{
    EXPECT_EQ(inChild([] {
                  alarm(120);
                  std::freopen("/dev/null", "w", stdout);
                  // The C allocator is not to need a map either.
                  mallopt(M_MMAP_MAX, 0);
                  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
                  std::free(std::malloc(std::size_t(1) << 30));
                  Tq::LargeObjectHeap heap(std::uint64_t(1) << 40);
                  std::vector<void*> blocks;
                  for (int i = 0; i < 100'000; ++i)
                      blocks.push_back(heap.Alloc(16'384 + 48));
                  // Holes: each takes a map of its own and cuts another in two.
                  for (std::size_t i = 0; i < blocks.size(); i += 2)
                      heap.Free(blocks[i]);
                  // Whatever the system refuses now, blocks are usable and the books are right.
                  for (std::size_t i = 0; i < blocks.size(); i += 2) {
                      blocks[i] = heap.Alloc(16'384 + 48);
                      std::memset(blocks[i], 1, 16'384);
                  }
                  for (void* block : blocks)
                      heap.Free(block);
                  return heap.freePool().size() == 1 ? 7 : 1;
              }),
              7);
}

#endif
