#include "OS/Shared/TqHeap_Debug.h"
#include "support/OutputCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

// Exported and on their own, so that stacks can name them.
extern "C" {

[[gnu::noinline]] char* allocateInDebugHeap(iHeap& heap, std::size_t size)
{
    auto* block = static_cast<char*>(heap.alloc(size));
    asm volatile("" ::: "memory"); // the call above is not the last one
    return block;
}

[[gnu::noinline]] void releaseInDebugHeap(iHeap& heap, void* block)
{
    heap.deAlloc(block);
    asm volatile("" ::: "memory");
}

[[gnu::noinline]] char* allocateElsewhere(iHeap& heap, std::size_t size)
{
    char* block = allocateInDebugHeap(heap, size);
    asm volatile("" ::: "memory");
    return block;
}
}

namespace {

constexpr unsigned kSmallQuarantineMb = 1;
#ifdef OS_TESTS_UNDER_SANITIZER
constexpr bool kSanitizers = true;
#else
constexpr bool kSanitizers = false;
#endif

void touch(char* where)
{
    *const_cast<volatile char*>(where) = 'x';
}

// Runs code that must die by an access without permission. @return what it wrote to standard error
std::string deathOf(const std::function<void()>& code)
{
    OutputCapture capture(OutputCapture::eStderr);
    const pid_t child = fork();
    if (child == 0) {
        const rlimit noCore = {};
        setrlimit(RLIMIT_CORE, &noCore);
        code();
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    // A sanitizer's own handler comes after ours, and ends the process with a status.
    EXPECT_TRUE((WIFSIGNALED(status) && WTERMSIG(status) == SIGSEGV) ||
                (kSanitizers && WIFEXITED(status) && WEXITSTATUS(status) != 0))
        << "status " << status;
    return capture.text();
}

} // namespace

TEST(DebugHeap, AnAccessBehindABlockIsAFaultThatNamesTheBlock)
{
    struct Case
    {
        std::size_t size;
        std::ptrdiff_t offset;
        const char* line;
    };
    const Case cases[] = {
        {32, 32, "read or write 1 bytes behind a block of 32 bytes"},
        {32, 48, "read or write 17 bytes behind a block of 32 bytes"},
        {100, 112, "read or write 13 bytes behind a block of 100 bytes"},
        {100, 100 + 4000, "read or write 4001 bytes behind a block of 100 bytes"},
        {0, 0, "read or write 1 bytes behind a block of 0 bytes"},
        {4080, -20, "read or write 20 bytes before a block of 4080 bytes"},
        {100'000, 100'000, "read or write 1 bytes behind a block of 100000 bytes"},
    };
    for (const Case& c : cases)
        EXPECT_THAT(deathOf([&] {
                        Tq::DebugHeap heap;
                        heap.alloc(4080);
                        touch(allocateInDebugHeap(heap, c.size) + c.offset);
                    }),
                    AllOf(HasSubstr(c.line), HasSubstr("allocated by\n"),
                          HasSubstr("allocateInDebugHeap"), Not(HasSubstr("freed"))));
}

TEST(DebugHeap, AnAccessToAFreedBlockIsAFaultThatNamesBothStacks)
{
    EXPECT_THAT(
        deathOf([] {
            Tq::DebugHeap heap;
            char* block = allocateInDebugHeap(heap, 100);
            releaseInDebugHeap(heap, block);
            touch(block + 5);
        }),
        AllOf(HasSubstr("debug heap: read or write at byte 5 of a freed block of 100 bytes"),
              HasSubstr("allocateInDebugHeap"), HasSubstr("freed by\n"),
              HasSubstr("releaseInDebugHeap")));
    EXPECT_THAT(deathOf([] {
                    Tq::DebugHeap heap(0); // no quarantine
                    char* block = allocateInDebugHeap(heap, 100);
                    heap.deAlloc(block);
                    touch(block);
                }),
                HasSubstr("where no block is any more"));
}

TEST(DebugHeap, AFaultElsewhereIsNotItsOwn)
{
    EXPECT_THAT(deathOf([] {
                    Tq::DebugHeap heap;
                    raise(SIGSEGV);
                }),
                Not(HasSubstr("debug heap")));
    EXPECT_THAT(deathOf([] {
                    Tq::DebugHeap heap;
                    touch(reinterpret_cast<char*>(16));
                }),
                Not(HasSubstr("debug heap")));
}

TEST(DebugHeapDeathTest, AnEarlierHandlerComesAfterTheReport)
{
    // In a new process: the handler is installed with a process's first debug heap.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    const auto overrun = [] {
        const rlimit noCore = {};
        setrlimit(RLIMIT_CORE, &noCore);
        struct sigaction action = {};
        action.sa_handler = [](int) {
            [[maybe_unused]] const auto count = write(STDERR_FILENO, "earlier\n", 8);
            std::signal(SIGSEGV, SIG_DFL);
        };
        sigaction(SIGSEGV, &action, nullptr);
        Tq::DebugHeap heap;
        touch(allocateInDebugHeap(heap, 16) + 16);
    };
    EXPECT_EXIT(overrun(), testing::KilledBySignal(SIGSEGV), "1 bytes behind(.|\n)*\nearlier\n");
}

TEST(DebugHeap, WritesNextToABlockAreFoundWhenItIsReleased)
{
    struct Case
    {
        std::size_t size;
        std::ptrdiff_t offset;
        const char* line;
    };
    const Case cases[] = {
        {100, 100, "1 bytes were written behind the block of 100 bytes"},
        {100, 111, "1 bytes were written behind the block of 100 bytes"},
        {100, -1, "1 bytes were written before the block of 100 bytes"},
        {100, -16, "from 16 bytes before it"},
        {100, -3000, "from 3000 bytes before it"},
    };
    for (const Case& c : cases) {
        Tq::DebugHeap heap;
        const auto damaged = [&] {
            char* block = allocateInDebugHeap(heap, c.size);
            std::memset(block, 1, c.size);
            block[c.offset] = 0;
            return block;
        };
        const auto isReported = AllOf(HasSubstr(c.line), HasSubstr("allocateInDebugHeap"));
        char* block = damaged();
        EXPECT_THAT(outputOf([&] { releaseInDebugHeap(heap, block); }),
                    AllOf(isReported, HasSubstr("found by"), HasSubstr("releaseInDebugHeap")));
        block = damaged();
        EXPECT_THAT(outputOf([&] { heap.deAlloc(heap.reAlloc(block, 200)); }), isReported);
        block = damaged();
        EXPECT_THAT(outputOf([&] { EXPECT_EQ(heap.check(), 1u); }), isReported);
        EXPECT_EQ(outputOf([&] {
                      EXPECT_EQ(heap.check(), 0u) << "once";
                      heap.deAlloc(block);
                  }),
                  "");
    }
}

TEST(DebugHeap, WrongReleasesAreReportedAndChangeNothing)
{
    Tq::DebugHeap heap;
    char* block = allocateInDebugHeap(heap, 100);
    char* freed = allocateInDebugHeap(heap, 50);
    releaseInDebugHeap(heap, freed);
    int foreign = 0;

    const auto twice = AllOf(HasSubstr("the block of 50 bytes"), HasSubstr("is freed twice"),
                             HasSubstr("allocateInDebugHeap"), HasSubstr("releaseInDebugHeap"),
                             HasSubstr("again by"));
    EXPECT_THAT(outputOf([&] { releaseInDebugHeap(heap, freed); }), twice);
    EXPECT_THAT(outputOf([&] { EXPECT_EQ(heap.reAlloc(freed, 10), nullptr); }), twice);
    EXPECT_THAT(outputOf([&] { releaseInDebugHeap(heap, block + 8); }),
                AllOf(HasSubstr("lies 8 bytes from the start of the block of 100 bytes"),
                      HasSubstr("releaseInDebugHeap")));
    EXPECT_THAT(outputOf([&] { EXPECT_EQ(heap.reAlloc(block + 16, 10), nullptr); }),
                HasSubstr("lies 16 bytes"));
    EXPECT_THAT(outputOf([&] { releaseInDebugHeap(heap, &foreign); }),
                AllOf(HasSubstr("is no block of this heap"), HasSubstr("releaseInDebugHeap")));
    EXPECT_THAT(outputOf([&] { EXPECT_EQ(heap.reAlloc(&foreign, 10), nullptr); }),
                HasSubstr("is no block of this heap"));

    EXPECT_TRUE(heap.isPointerValid(block));
    for (const void* wrong :
         {static_cast<const void*>(block + 1), static_cast<const void*>(freed),
          static_cast<const void*>(&foreign), static_cast<const void*>(nullptr)})
        EXPECT_FALSE(heap.isPointerValid(wrong));
    EXPECT_EQ(outputOf([&] {
                  heap.deAlloc(block);
                  heap.deAlloc(nullptr);
              }),
              "");
}

TEST(DebugHeap, ResizingKeepsTheContentsAndMoves)
{
    Tq::DebugHeap heap;
    auto* block = static_cast<char*>(heap.reAlloc(nullptr, 10));
    std::memcpy(block, "123456789", 10);
    for (const std::size_t size : {5'000u, 300'000u, 16u, 12u}) {
        auto* moved = static_cast<char*>(heap.reAlloc(block, size));
        EXPECT_NE(moved, block);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(moved) % 16, 0u);
        EXPECT_STREQ(moved, "123456789");
        EXPECT_FALSE(heap.isPointerValid(block));
        block = moved;
    }
    EXPECT_EQ(heap.reAlloc(block, std::size_t(1) << 62), nullptr);
    EXPECT_STREQ(block, "123456789") << "untouched where there is no memory";
    EXPECT_EQ(heap.reAlloc(block, 0), nullptr);
    EXPECT_FALSE(heap.isPointerValid(block));
}

TEST(DebugHeap, LeaksAreReportedByStackTheLargestFirst)
{
    Tq::DebugHeap heap;
    for (int i = 0; i < 3; ++i)
        allocateInDebugHeap(heap, 100);
    for (int i = 0; i < 2; ++i)
        allocateElsewhere(heap, 1'000);
    heap.deAlloc(heap.alloc(5'000));

    const std::string text = outputOf([&] { heap.report(); });
    EXPECT_THAT(text, AllOf(HasSubstr("2300 bytes in 5 live blocks"),
                            HasSubstr("300 bytes in 3 blocks"), Not(HasSubstr("5000"))));
    EXPECT_LT(text.find("2000 bytes in 2 blocks"), text.find("300 bytes in 3 blocks"));
    EXPECT_LT(text.find("allocateElsewhere"), text.find("300 bytes in 3 blocks"));
}

TEST(DebugHeap, BeyondItsLimitTheCAllocatorServesAndTheHeapSaysSoOnce)
{
    constexpr std::size_t kBlocks = 20'000;
    constexpr std::size_t kGuarded = Tq::GuardedArea::kMaxLiveBlocks;
    Tq::DebugHeap heap;
    std::vector<char*> blocks;
    const std::string said = outputOf([&] {
        for (std::size_t i = 0; i < kBlocks; ++i) {
            auto* block = static_cast<char*>(heap.alloc(24));
            std::memset(block, static_cast<int>(i % 251), 24);
            blocks.push_back(block);
        }
    });
    EXPECT_THAT(said, HasSubstr("16000 live blocks"));
    EXPECT_EQ(said.find('\n'), said.size() - 1);
    EXPECT_EQ(outputOf([&] {
                  blocks[kGuarded] = static_cast<char*>(heap.reAlloc(blocks[kGuarded], 48));
                  for (std::size_t i = 0; i < kBlocks; ++i) {
                      EXPECT_TRUE(heap.isPointerValid(blocks[i]));
                      EXPECT_EQ(blocks[i][23], static_cast<char>(i % 251));
                      heap.deAlloc(blocks[i]);
                  }
              }),
              "");
    EXPECT_FALSE(heap.isPointerValid(blocks.back()));
    EXPECT_THAT(outputOf([&] { heap.reportLeaks(); }), HasSubstr("0 bytes in 0 live blocks\n"));
    heap.deAlloc(blocks[0] = static_cast<char*>(heap.alloc(1)));
    EXPECT_THAT(outputOf([&] { heap.deAlloc(blocks[0]); }), HasSubstr("twice")) << "guarded again";
}

TEST(DebugHeap, TheQuarantineIsBoundedOldestOutFirst)
{
    Tq::DebugHeap heap(kSmallQuarantineMb);
    const auto isKnown = [&](void* block) {
        return outputOf([&] { heap.deAlloc(block); }).find("is freed twice") != std::string::npos;
    };
    std::vector<void*> freed;
    for (int i = 0; i < 300; ++i) // a page each: there is room for 256
        freed.push_back(heap.alloc(100));
    for (void* block : freed)
        heap.deAlloc(block);
    EXPECT_FALSE(isKnown(freed[43]));
    EXPECT_TRUE(isKnown(freed[44]));
    EXPECT_TRUE(isKnown(freed[299]));

    void* huge = heap.alloc(100'000'000);
    heap.deAlloc(huge);
    EXPECT_TRUE(isKnown(huge)) << "it holds no memory there";
    EXPECT_FALSE(isKnown(freed[44]));
    EXPECT_TRUE(isKnown(freed[45]));
}

TEST(DebugHeap, AFullRangeTakesFromTheQuarantineAndThenGuardsNoMore)
{
    constexpr std::size_t kRange = 1 << 20;
    Tq::GuardedArea area(kRange, kRange);
    const Tq::CallStack stack;
    for (std::size_t i = 0; i < 1'000; ++i) {
        Tq::GuardedBlock* block = area.allocate(1 + i * 331 % 100'000, stack);
        ASSERT_NE(block, nullptr);
        std::memset(block->start, 1, block->size);
        area.release(*block, stack);
    }
    std::vector<Tq::GuardedBlock*> live;
    while (Tq::GuardedBlock* block = area.allocate(10'000, stack))
        live.push_back(block);
    EXPECT_GT(live.size(), 50u) << "of 63, but for gaps";
    area.release(*live[7], stack);
    Tq::GuardedBlock* again = area.allocate(10'000, stack);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(area.find(again->start + again->size - 1), again);
    EXPECT_EQ(area.find(live[6]->start), live[6]);
}

TEST(DebugHeap, ManyThreadsAllocateAndReleaseOneAnothersBlocks)
{
    constexpr std::size_t kThreads = 4;
    constexpr std::size_t kSlots = 64;
    Tq::DebugHeap heap(kSmallQuarantineMb);
    std::atomic<unsigned char*> slots[kSlots] = {};
    std::atomic<int> wrong{0};
    const auto drop = [&](unsigned char* block) {
        if (!block)
            return;
        for (unsigned i = 1; i < block[0]; ++i)
            wrong += block[i] != block[0];
        heap.deAlloc(block);
    };
    EXPECT_EQ(outputOf([&] {
                  std::vector<std::thread> threads;
                  for (std::size_t t = 0; t < kThreads; ++t)
                      threads.emplace_back([&, t] {
                          for (std::size_t i = 0; i < 1'500; ++i) {
                              const auto size = static_cast<unsigned char>(1 + (i * 7 + t) % 255);
                              auto* block = static_cast<unsigned char*>(heap.alloc(size));
                              if (i % 3 == 0)
                                  block = static_cast<unsigned char*>(heap.reAlloc(block, 255));
                              std::memset(block, size, size);
                              drop(slots[(i * 31 + t) % kSlots].exchange(block));
                          }
                      });
                  for (std::thread& thread : threads)
                      thread.join();
                  for (auto& slot : slots)
                      drop(slot.exchange(nullptr));
                  EXPECT_EQ(heap.check(), 0u);
              }),
              "");
    EXPECT_EQ(wrong, 0);
    EXPECT_THAT(outputOf([&] { heap.reportLeaks(); }), HasSubstr("in 0 live blocks"));
}

TEST(DebugHeap, AForkedChildGoesOnWithBlocksOfItsOwn)
{
    Tq::DebugHeap heap(kSmallQuarantineMb);
    auto* shared = static_cast<char*>(heap.alloc(100));
    std::strcpy(shared, "parent");
    std::atomic<bool> stop{false};
    std::thread busy([&] { // holds the lock at the moment of one fork or another
        while (!stop)
            heap.deAlloc(heap.alloc(10));
    });
    for (int i = 0; i < 20; ++i) {
        const pid_t child = fork();
        if (child == 0) {
            alarm(60);
            bool good = std::strcmp(shared, "parent") == 0;
            shared = static_cast<char*>(heap.reAlloc(shared, 200));
            good = good && std::strcmp(shared, "parent") == 0;
            std::strcpy(shared, "child");
            heap.deAlloc(shared);
            for (int k = 0; k < 50; ++k)
                heap.deAlloc(heap.alloc(30));
            _exit(good && heap.check() == 0 ? 0 : 1);
        }
        int status = -1;
        waitpid(child, &status, 0);
        EXPECT_EQ(status, 0);
    }
    stop = true;
    busy.join();
    EXPECT_STREQ(shared, "parent");
    heap.deAlloc(shared);
}

TEST(DebugHeap, TheSizeOfTheQuarantineIsReadWithCare)
{
    const std::pair<const char*, unsigned> cases[] = {{"0", 0},
                                                      {"7", 7},
                                                      {"65536", 65'536},
                                                      {"65537", 64},
                                                      {"", 64},
                                                      {nullptr, 64},
                                                      {"-1", 64},
                                                      {"8 ", 64},
                                                      {"x", 64},
                                                      {"1e9", 64},
                                                      {"99999999999999", 64}};
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(Tq::DebugHeap::quarantineMbFrom(text), expected) << (text ? text : "none");
}
