#include "Shared/MemoryCalls.h"
#include "support/OutputCapture.h"

#include "OS/Shared/TqLargeObjectHeap.h"

#include <OS/Shared/MTHeap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

using Tq::LargeObjectHeap;

constexpr std::uint64_t kMiB = 1 << 20;
constexpr std::uint64_t kPage = 4096;

std::uint64_t freeBytes(const LargeObjectHeap& heap)
{
    std::uint64_t sum = 0;
    for (const Tq::MemAlloc& range : heap.freePool())
        sum += range.size;
    return sum;
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

// The system's flags of the mapping that holds an address.
std::string mappingFlags(const void* address)
{
    std::ifstream maps("/proc/self/smaps");
    const auto wanted = reinterpret_cast<std::uintptr_t>(address);
    bool inside = false;
    for (std::string line; std::getline(maps, line);) {
        unsigned long from, to;
        if (std::sscanf(line.c_str(), "%lx-%lx ", &from, &to) == 2)
            inside = from <= wanted && wanted < to;
        else if (inside && line.starts_with("VmFlags:"))
            return line + " ";
    }
    return "";
}

std::byte* bytes(void* block)
{
    return static_cast<std::byte*>(block);
}

} // namespace

TEST(LargeObjectHeap, RoundsUpAMultipleOfSixteenToo)
{
    LargeObjectHeap heap(kMiB);
    struct Row
    {
        std::uint64_t asked, taken;
    };
    std::uint64_t used = 0;
    for (const Row& row : {Row{32, 48}, Row{33, 48}, Row{47, 48}, Row{48, 64}, Row{0, 16}}) {
        void* block = heap.Alloc(row.asked);
        EXPECT_EQ(block, heap.memBase() + used);
        EXPECT_EQ(heap.Size(block), row.taken);
        EXPECT_TRUE(heap.Validate(block));
        EXPECT_FALSE(heap.Validate(bytes(block) + 16));
        used += row.taken;
        EXPECT_EQ(freeBytes(heap), kMiB - used);
    }
    const Heap::Stats& stats = *Heap::getHeapStats();
    EXPECT_EQ(stats.counters[0], kMiB);
    EXPECT_EQ(stats.counters[1], used);
    EXPECT_EQ(stats.counters[2], kMiB);
    EXPECT_EQ(stats.counters[3] + stats.counters[4] + stats.counters[5], 0u);
}

TEST(LargeObjectHeap, ChoosesTheSmallestRangeThatFitsTheLowestAmongEquals)
{
    LargeObjectHeap heap(kMiB);
    std::vector<void*> blocks;
    for (const unsigned int size :
         {1000u, 10u, 500u, 10u, 300u, 10u, 500u, 10u}) // every other is released
        blocks.push_back(heap.Alloc(size));
    for (std::size_t i = 0; i < blocks.size(); i += 2)
        heap.Free(blocks[i]);
    EXPECT_EQ(heap.Alloc(300), blocks[4]) << "exact";
    EXPECT_EQ(heap.Alloc(400), blocks[2]) << "two of one size: the lower";
    EXPECT_EQ(heap.Alloc(400), blocks[6]);
    EXPECT_EQ(heap.Alloc(400), blocks[0]);
}

TEST(LargeObjectHeap, ReleasedNeighboursBecomeOneRange)
{
    std::vector<int> order{0, 1, 2};
    do {
        LargeObjectHeap heap(kMiB);
        void* before = heap.Alloc(100);
        void* blocks[3];
        for (void*& block : blocks)
            block = heap.Alloc(5000);
        void* after = heap.Alloc(100);
        for (const int i : order)
            heap.Free(blocks[i]);
        EXPECT_EQ(heap.freePool().size(), 2u) << "theirs, and the rest of the pool";
        EXPECT_EQ(heap.freePool().begin()->addr, blocks[0]);
        EXPECT_EQ(heap.freePool().begin()->size, 3u * 5008u);
        heap.Free(before);
        heap.Free(after);
        EXPECT_EQ(heap.freePool().size(), 1u);
        EXPECT_EQ(freeBytes(heap), kMiB);
        EXPECT_EQ(heap.memCommit(), heap.memBase()) << "the highest range begins below the mark";
    } while (std::next_permutation(order.begin(), order.end()));
}

TEST(LargeObjectHeap, GivesBackOnlyTheWholePagesStrictlyInside)
{
    LargeObjectHeap heap(kMiB);
    auto* block = bytes(heap.Alloc(3 * kPage));
    void* next = heap.Alloc(100);
    ASSERT_EQ(block, heap.memBase());
    std::memset(block, 5, 3 * kPage);
    heap.Free(block);
    EXPECT_TRUE(readable(block));
    EXPECT_FALSE(readable(block + kPage));
    EXPECT_TRUE(readable(block + 2 * kPage));
    EXPECT_TRUE(readable(next));
    EXPECT_EQ(heap.Alloc(3 * kPage), block);
    EXPECT_EQ(block[kPage], std::byte(0));
    std::memset(block, 5, 3 * kPage);
    heap.Free(block);
    heap.Free(next);

    auto* small = bytes(heap.Alloc(2 * kPage));
    heap.Alloc(16);
    heap.Free(small);
    EXPECT_TRUE(readable(small + kPage)) << "no page lies strictly inside";
}

TEST(LargeObjectHeap, AsksForHugePagesAfterEveryLargeCommit)
{
    LargeObjectHeap heap(64 * kMiB);
    for (int i = 0; i < 2; ++i) {
        void* frame = heap.Alloc(8'294'400);
        const std::string flags = mappingFlags(frame);
        if (flags.empty() || flags.find(" mr ") == std::string::npos)
            GTEST_SKIP() << "the system tells no flags of mappings";
        EXPECT_NE(flags.find(" hg "), std::string::npos) << flags;
        heap.Free(frame);
        EXPECT_EQ(mappingFlags(bytes(frame) + kMiB).find(" hg "), std::string::npos);
    }
    EXPECT_EQ(mappingFlags(bytes(heap.Alloc(kMiB)) + kMiB / 2).find(" hg "), std::string::npos);
}

TEST(LargeObjectHeap, ReportsWhatIsNoBlock)
{
    LargeObjectHeap heap(kMiB);
    void* block = heap.Alloc(1000);
    const std::uint64_t before = freeBytes(heap);
    const auto line = [](const char* format, const void* pointer) {
        char text[100];
        std::snprintf(text, sizeof text, format, pointer);
        return std::string(text);
    };
    const std::string assertion =
        "assertion failed false at OS/Shared/TqLargeObjectHeap line 231\n";
    EXPECT_EQ(outputOf([&] { heap.Free(bytes(block) + 16); }),
              line("double deletion at %p\n", bytes(block) + 16) + assertion);
    EXPECT_EQ(outputOf([&] { EXPECT_EQ(heap.Realloc(bytes(block) + 16, 50), nullptr); }),
              "realloc alert!\n");
    EXPECT_EQ(freeBytes(heap), before);
    heap.Free(block);
    EXPECT_EQ(outputOf([&] { heap.Free(block); }),
              line("double deletion at %p\n", block) + assertion);
    EXPECT_EQ(freeBytes(heap), kMiB);

    void* foreign = std::malloc(100);
    EXPECT_EQ(outputOf([&] { heap.Free(foreign); }),
              line("unexpected address for delete at %p\n", foreign));
    EXPECT_EQ(outputOf([&] { heap.Free(nullptr); }),
              line("unexpected address for delete at %p\n", nullptr));
}

TEST(LargeObjectHeap, GrowsInPlaceIntoTheRangeBehind)
{
    LargeObjectHeap heap(kMiB);
    auto* block = bytes(heap.Alloc(10'000));
    std::memset(block, 7, 10'000);
    EXPECT_EQ(heap.Realloc(block, 5000), block);
    EXPECT_EQ(heap.Realloc(block, heap.Size(block)), block);
    EXPECT_EQ(heap.Size(block), 10'016u);

    // Much room behind: no more than needed is taken.
    EXPECT_EQ(heap.Realloc(block, 20'001), block);
    EXPECT_EQ(heap.Size(block), 20'016u);
    std::memset(block, 7, 20'001);

    // Little room, which was given back to the system: all of it is taken.
    auto* gap = bytes(heap.Alloc(30'000));
    void* guard = heap.Alloc(16);
    std::memset(gap, 9, 30'000);
    heap.Free(gap);
    EXPECT_FALSE(readable(gap + 2 * kPage));
    EXPECT_EQ(heap.Realloc(block, 30'000), block);
    EXPECT_EQ(heap.Size(block), 20'016u + 30'016u);
    std::memset(block, 7, heap.Size(block));
    EXPECT_EQ(heap.freePool().size(), 1u);

    // No room: it moves with its contents.
    auto* moved = bytes(heap.Realloc(block, 60'000));
    EXPECT_GT(moved, guard);
    EXPECT_TRUE(std::all_of(moved, moved + 50'000, [](std::byte b) { return b == std::byte(7); }));
    EXPECT_FALSE(heap.Validate(block));
    heap.Free(moved);
    heap.Free(guard);
    EXPECT_EQ(freeBytes(heap), kMiB);
    EXPECT_EQ(Heap::getHeapStats()->counters[1], 0u);
}

TEST(LargeObjectHeap, FallsBackToTheCAllocatorAndSaysSoAtMostOnceASecond)
{
    StoppedClock clock;
    LargeObjectHeap heap(kMiB);
    void* blocks[3];
    errno = ENOENT;
    EXPECT_EQ(outputOf([&] { blocks[0] = heap.Alloc(2 * kMiB); }),
              "No physical memory available, err 2\n");
    clock.advance(999);
    EXPECT_EQ(outputOf([&] { blocks[1] = heap.Alloc(2 * kMiB); }), "");
    clock.advance(1);
    EXPECT_NE(outputOf([&] { blocks[2] = heap.Alloc(2 * kMiB); }), "");
    EXPECT_EQ(freeBytes(heap), kMiB);

    std::memset(blocks[0], 4, 2 * kMiB);
    blocks[0] = heap.Realloc(blocks[0], 3 * kMiB);
    EXPECT_EQ(bytes(blocks[0])[2 * kMiB - 1], std::byte(4));
    for (void* block : blocks) {
        EXPECT_EQ(heap.Size(block), 0u);
        EXPECT_TRUE(
            outputOf([&] { heap.Free(block); }).starts_with("unexpected address for delete at 0x"));
    }
}

TEST(LargeObjectHeap, TakesThePoolSizeAsADecimalNumberOfMiB)
{
    struct Row
    {
        const char* text;
        std::uint64_t bytes;
    };
    const Row rows[] = {{"1048576", kMiB << 20},
                        {"1", kMiB},
                        {" 12", 12 * kMiB},
                        {"", 0},
                        {"much", 0},
                        {"0", 0},
                        {"-5", 0},
                        {"0x40", 0},
                        {"8796093022208", 0},
                        {"99999999999999999999999", 0}};
    for (const Row& row : rows)
        EXPECT_EQ(LargeObjectHeap::poolBytesFrom(row.text), row.bytes) << row.text;
    EXPECT_NE(LargeObjectHeap::poolBytesFrom("8796093022207"), 0u) << "what no system reserves";
}

TEST(LargeObjectHeap, AnEmptyPoolServesEverythingFromTheCAllocator)
{
    for (const std::uint64_t pool : {std::uint64_t(0), std::uint64_t(1) << 62}) {
        LargeObjectHeap heap(pool);
        EXPECT_EQ(heap.freePool().size(), 0u);
        void* block = nullptr;
        EXPECT_NE(outputOf([&] { block = heap.Alloc(40'000); }), "");
        std::memset(block, 1, 40'000);
        block = heap.Realloc(block, 80'000);
        EXPECT_NE(outputOf([&] { heap.Free(block); }), "");
        EXPECT_EQ(outputOf([&] { heap.reportUsage(); }), "0Mb in pool size 0, 0Mb used size 0\n");
    }
}

TEST(LargeObjectHeap, ReportsItsUsageInThirtyTwoBits)
{
    LargeObjectHeap heap(kMiB << 13); // 8 GiB are 0 in 32 bits
    EXPECT_EQ(outputOf([&] { heap.reportUsage(); }), "0Mb in pool size 1, 0Mb used size 0\n");
    void* block = heap.Alloc(5 * kMiB);
    EXPECT_EQ(outputOf([&] { heap.reportUsage(); }), "-5Mb in pool size 1, 5Mb used size 1\n");
    heap.Free(block);

    LargeObjectHeap small(64 * kMiB);
    small.Alloc(3 * kMiB);
    EXPECT_EQ(outputOf([&] { small.reportUsage(); }), "60Mb in pool size 1, 3Mb used size 1\n");
}

TEST(LargeObjectHeap, CutsTheSizeOfAHugeBlockToThirtyTwoBitsWhenItIsReleased)
{
    constexpr std::uint64_t kHuge = std::uint64_t(1) << 32;
    LargeObjectHeap heap(kMiB << 14);
    void* block = heap.Alloc(kHuge + 100'000); // only a few of its pages are ever touched
    if (!heap.Validate(block))
        GTEST_SKIP() << "the system does not commit so much";
    heap.Free(block);
    EXPECT_FALSE(heap.Validate(block));
    EXPECT_EQ(freeBytes(heap), (kMiB << 14) - kHuge) << "the rest is lost";
    EXPECT_EQ(outputOf([&] { heap.reportUsage(); }),
              "free+used 0, total 0, diff 0\n0Mb in pool size 2, 0Mb used size 0\n");
    EXPECT_EQ(heap.Alloc(99'990), block);

    void* lost = heap.Alloc(kHuge - 16); // nothing of it comes back
    const std::uint64_t before = freeBytes(heap);
    heap.Free(lost);
    EXPECT_EQ(freeBytes(heap), before);
}

TEST(LargeObjectHeap, ARefusedCommitFallsBackAndChangesNothing)
{
    LargeObjectHeap heap(kMiB);
    void* block = heap.Alloc(1000);
    const std::uint64_t before = freeBytes(heap);
    void* other = nullptr;
    EXPECT_EQ(outputOf([&] {
                  const RefusedMemory refusal("mprotect");
                  other = heap.Alloc(50'000);
                  EXPECT_EQ(heap.Realloc(block, 2000), nullptr);
              }),
              "No physical memory available, err 12\n");
    EXPECT_FALSE(heap.Validate(other));
    std::memset(other, 1, 50'000);
    EXPECT_EQ(heap.Size(block), 1008u);
    EXPECT_EQ(freeBytes(heap), before);
    outputOf([&] { heap.Free(other); });
}

TEST(LargeObjectHeap, ARefusedRegistryFallsBackAndChangesNothing)
{
    LargeObjectHeap heap(kMiB);
    void* block = nullptr;
    EXPECT_EQ(outputOf([&] {
                  const RefusedMemory refusal("malloc", 0, 1);
                  block = heap.Alloc(50'000);
              }),
              "No physical memory available, err 12\n");
    EXPECT_FALSE(heap.Validate(block));
    EXPECT_EQ(freeBytes(heap), kMiB);
    outputOf([&] { heap.Free(block); });

    void* own = heap.Alloc(50'000);
    const RefusedMemory refusal("malloc");
    heap.Free(own);
    EXPECT_EQ(freeBytes(heap), kMiB) << "releasing needs no memory";
    EXPECT_EQ(refusal.refused(), 0);
}
