#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Shared/Heap.h>

#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr auto kReadWrite = iHeap::eProtectReadWrite;

std::size_t pageSize()
{
    return static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
}

// Whether the process can read a byte there, without touching it.
bool readable(const void* address)
{
    int ends[2];
    if (pipe(ends) != 0)
        return false;
    const bool result = write(ends[1], address, 1) == 1;
    close(ends[0]);
    close(ends[1]);
    return result;
}

struct Cache : iReclaimable
{
    Cache(std::string name_, std::vector<std::string>& log_) : name(std::move(name_)), log(log_) {}
    void purge() override
    {
        log.push_back("purge " + name);
        if (onPurge)
            onPurge();
    }
    void limitUsage() override { log.push_back("limit " + name); }
    void reportUsage() override { log.push_back("report " + name); }

    std::string name;
    std::vector<std::string>& log;
    std::function<void()> onPurge;
};

} // namespace

TEST(Heap, CommitsFromTheStartOfThePageAndAnswersTheAddressAsGiven)
{
    Heap heap;
    const std::size_t page = pageSize();
    auto* base =
        static_cast<char*>(heap.virtualAlloc(nullptr, 4 * page, iHeap::eMemReserve, kReadWrite));
    ASSERT_NE(base, MAP_FAILED);
    EXPECT_FALSE(readable(base));
    char* middle = base + page + page / 2;
    EXPECT_EQ(heap.virtualAlloc(middle, page, iHeap::eMemCommit, kReadWrite), middle);
    std::memset(base + page, 1, 2 * page); // both pages that the range touches
    EXPECT_FALSE(readable(base + 3 * page));
    heap.virtualDeAlloc(base, static_cast<std::uint32_t>(4 * page), iHeap::eMemRelease);
    EXPECT_FALSE(readable(base + page));
}

TEST(Heap, OnlyReserveAndCommitInOneStepForcesTheAddress)
{
    Heap heap;
    const std::size_t page = pageSize();
    auto* taken =
        static_cast<char*>(heap.virtualAlloc(nullptr, page, iHeap::eMemReserveCommit, kReadWrite));
    taken[0] = 7;
    void* hinted = heap.virtualAlloc(taken, page, iHeap::eMemReserve, kReadWrite);
    EXPECT_NE(hinted, taken);
    EXPECT_EQ(taken[0], 7);
    EXPECT_EQ(heap.virtualAlloc(taken, page, iHeap::eMemReserveCommit, kReadWrite), taken);
    EXPECT_EQ(taken[0], 0) << "a new mapping in the same place";
    heap.virtualDeAlloc(taken, static_cast<std::uint32_t>(page), iHeap::eMemRelease);
    heap.virtualDeAlloc(hinted, static_cast<std::uint32_t>(page), iHeap::eMemRelease);
}

TEST(Heap, DecommitDropsTheContentsAndKeepsTheRange)
{
    Heap heap;
    const std::size_t page = pageSize();
    auto* base =
        static_cast<char*>(heap.virtualAlloc(nullptr, page, iHeap::eMemReserveCommit, kReadWrite));
    base[0] = 7;
    heap.virtualDeAlloc(base, static_cast<std::uint32_t>(page), iHeap::eMemDecommit);
    EXPECT_FALSE(readable(base));
    EXPECT_NE(heap.virtualAlloc(base, page, iHeap::eMemReserve, kReadWrite), base)
        << "the range is still taken";
    EXPECT_EQ(heap.virtualAlloc(base, page, iHeap::eMemCommit, kReadWrite), base);
    EXPECT_EQ(base[0], 0);
    heap.virtualDeAlloc(base, static_cast<std::uint32_t>(page), iHeap::eMemRelease);
}

TEST(Heap, FailuresArePassedOnAndPrintedAsPublished)
{
    Heap heap;
    constexpr std::size_t kTooMuch = std::size_t(1) << 60;
    EXPECT_EQ(heap.virtualAlloc(nullptr, kTooMuch, iHeap::eMemReserve, kReadWrite), MAP_FAILED)
        << "deliberately not null";
    EXPECT_EQ(heap.virtualAlloc(nullptr, kTooMuch, iHeap::eMemReserveCommit, kReadWrite),
              MAP_FAILED);

    const auto unknown = static_cast<iHeap::eAllocationType>(0x5000);
    void* result = &heap;
    EXPECT_EQ(outputOf([&] { result = heap.virtualAlloc(nullptr, 1, unknown, kReadWrite); }),
              "assertion failed allocationType == eMemCommit at OS/Shared/Heap line 112\n");
    EXPECT_EQ(result, nullptr);

    auto* page =
        static_cast<char*>(heap.virtualAlloc(nullptr, pageSize(), iHeap::eMemReserve, kReadWrite));
    EXPECT_EQ(outputOf([&] { heap.virtualDeAlloc(page + 1, 16, iHeap::eMemRelease); }),
              "assertion failed (size_t) mem % pageSize_ == 0 at OS/Shared/Heap line 122\n"
              "virtualDealloc failed (22)assertion failed false at OS/Shared/Heap line 146\n");
    heap.virtualDeAlloc(page, static_cast<std::uint32_t>(pageSize()), iHeap::eMemRelease);
}

TEST(Heap, WalksItsCachesInOrderOfRegistration)
{
    Heap heap;
    std::vector<std::string> log;
    Cache a("a", log), b("b", log);
    heap.registerReclaimable(&a);
    heap.registerReclaimable(&b);
    heap.registerReclaimable(&a);
    heap.reclaim();
    EXPECT_EQ(log, (std::vector<std::string>{"purge a", "purge b", "purge a"}));

    heap.deRegisterReclaimable(&a);
    heap.deRegisterReclaimable(nullptr);
    log.clear();
    heap.limitUsage();
    EXPECT_EQ(log, (std::vector<std::string>{"limit b", "limit a"}))
        << "only the first of two entries went";
}

TEST(Heap, HonoursCachesThatComeAndGoDuringTheWalk)
{
    Heap heap;
    std::vector<std::string> log;
    Cache a("a", log), b("b", log), c("c", log);
    a.onPurge = [&] {
        heap.deRegisterReclaimable(&b);
        heap.registerReclaimable(&c);
    };
    heap.registerReclaimable(&a);
    heap.registerReclaimable(&b);
    heap.reclaim();
    EXPECT_EQ(log, (std::vector<std::string>{"purge a", "purge c"}));
}

TEST(Heap, ReportsEachCacheWithASeparatorAndNothingWithoutOne)
{
    Heap heap;
    EXPECT_EQ(outputOf([&] { heap.report(); }), "");
    std::vector<std::string> log;
    Cache a("a", log);
    heap.registerReclaimable(&a);
    const std::string output = outputOf([&] { heap.report(); });
    EXPECT_EQ(log.size(), 1u);
    EXPECT_GT(std::stod(output), 0.0);
    EXPECT_TRUE(output.ends_with(": \n\n\n")) << output;
}

TEST(Heap, BlocksGrowInPlaceOrMoveWithTheirContents)
{
    iHeap* heap = OS()->heap();
    auto* block = static_cast<char*>(heap->alloc(5));
    std::memcpy(block, "abcd", 5);
    block = static_cast<char*>(heap->reAlloc(block, 100'000));
    EXPECT_STREQ(block, "abcd");
    EXPECT_TRUE(heap->isPointerValid(block));
    EXPECT_TRUE(heap->isPointerValid(nullptr)) << "the root's heap checks nothing";
    EXPECT_FALSE(heap->outOfMemory());
    heap->deAlloc(block);
    heap->deAlloc(nullptr);
    EXPECT_EQ(Heap::getHeapStats(), Heap::getHeapStats());
}
