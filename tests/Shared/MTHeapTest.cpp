#include "Shared/MemoryCalls.h"
#include "support/OutputCapture.h"

#include "OS/Shared/TqLargeObjectHeap.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Files/iSettings.h>
#include <OS/Files/iShell.h>
#include <OS/Shared/MTHeap.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <new>
#include <set>
#include <sys/mman.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Tq::MTHeap;

std::uint32_t headerOf(const void* block)
{
    std::uint32_t size;
    std::memcpy(&size, static_cast<const char*>(block) - 4, sizeof size);
    return size;
}

void setHeader(void* block, std::uint32_t size)
{
    std::memcpy(static_cast<char*>(block) - 4, &size, sizeof size);
}

bool isLarge(const void* block)
{
    return Tq::LargeObjectHeap::instance().Validate(static_cast<const char*>(block) - 16);
}

void fill(void* block, std::size_t size, unsigned int seed)
{
    auto* bytes = static_cast<unsigned char*>(block);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<unsigned char>(seed + i * 7);
}

bool holds(const void* block, std::size_t size, unsigned int seed)
{
    const auto* bytes = static_cast<const unsigned char*>(block);
    for (std::size_t i = 0; i < size; ++i)
        if (bytes[i] != static_cast<unsigned char>(seed + i * 7))
            return false;
    return true;
}

// What a client's heap may do: page requests that fail as the test says.
class StingyHeap final : public MTHeap
{
public:
    void* virtualAlloc(void* address, std::size_t length, eAllocationType type,
                       eProtectFlags protect) override
    {
        ++requests;
        if (nullAnswers > 0) {
            --nullAnswers;
            retrying = retrying || outOfMemory();
            return nullptr;
        }
        return refuse ? MAP_FAILED : MTHeap::virtualAlloc(address, length, type, protect);
    }

    int requests = 0;
    int nullAnswers = 0;
    bool refuse = false;
    bool retrying = false;
};

struct PoolSetting
{
    const char* text;
    std::uint64_t pool;
    int tookOneMegabyteFrom; // 1: the pool, 2: the C allocator
};
std::vector<PoolSetting> poolSettings{{nullptr, std::uint64_t(1) << 40, 0},
                                      {"1", 1 << 20, 0},
                                      {"64", 64 << 20, 0},
                                      {"99999999999999999999", 0, 0},
                                      {"4000000000", 0, 0},
                                      {"many", 0, 0},
                                      {"-1", 0, 0}};

void choosePool(const char* text)
{
    if (text)
        OS()->shell()
            ->getSettings(iSettings::eGlobal)
            ->setValue("VirtualPoolSizeMb", text, nullptr);
}

// The process's pool is built once, so each setting is tried in a child, before there is one here.
struct Pools : testing::Environment
{
    void SetUp() override
    {
        for (PoolSetting& setting : poolSettings) {
            std::fflush(nullptr);
            const pid_t child = fork();
            if (child == 0) {
                std::freopen("/dev/null", "w", stdout);
                choosePool(setting.text);
                MTHeap heap;
                void* block = heap.alloc((1 << 20) - 100);
                std::memset(block, 1, (1 << 20) - 100);
                const bool inPool =
                    Tq::LargeObjectHeap::instance().Validate(static_cast<char*>(block) - 16);
                heap.deAlloc(block);
                _exit(Heap::getHeapStats()->counters[0] == setting.pool ? (inPool ? 1 : 2) : 3);
            }
            int status = 0;
            waitpid(child, &status, 0);
            setting.tookOneMegabyteFrom = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        }
        choosePool("65536"); // ThreadSanitizer leaves no room for the usual one
        Tq::LargeObjectHeap::instance();
    }
};
[[maybe_unused]] testing::Environment* const pools = testing::AddGlobalTestEnvironment(new Pools);

constexpr std::size_t kOneToAChunk = 32764;

// Takes chunks until the heap asks for another region. @return what it has taken
std::vector<void*> exhaust(StingyHeap& heap)
{
    std::vector<void*> blocks;
    try {
        for (const int before = heap.requests; heap.requests == before;)
            blocks.push_back(heap.alloc(kOneToAChunk));
    } catch (const std::bad_alloc&) {
    }
    return blocks;
}

} // namespace

TEST(MTHeap, ServesEverySizeFromItsBinAlignedAndWithItsHeader)
{
    MTHeap heap;
    struct Row
    {
        std::size_t size;
        std::uint32_t bin;
    };
    const Row rows[] = {{0, 0},
                        {1, 0},
                        {12, 0},
                        {13, 1},
                        {28, 1},
                        {29, 2},
                        {4092, 255},
                        {4093, 256},
                        {32748, 2046},
                        {32749, 2047},
                        {32764, 2047},
                        {32765, MTHeap::kNoBin},
                        {32768, MTHeap::kNoBin},
                        {32769, MTHeap::kNoBin},
                        {8294400, MTHeap::kNoBin}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.size);
        EXPECT_EQ(heap.getBinIndexFromSize(row.size), row.bin);
        void* block = heap.alloc(row.size);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(block) % 16, 0u);
        EXPECT_EQ(headerOf(block), row.size);
        EXPECT_EQ(isLarge(block), row.bin == MTHeap::kNoBin);
        std::memset(block, 0xEE, row.size);
        if (row.bin != MTHeap::kNoBin) {
            const auto header = reinterpret_cast<std::uintptr_t>(block) - 4;
            EXPECT_EQ(header % 65536 % heap.getBinMaxSize(row.bin), 12u);
            // The bin's largest request takes the block that was released last.
            heap.deAlloc(block);
            EXPECT_EQ(heap.alloc(heap.getBinFreeSize(row.bin)), block);
        }
        heap.deAlloc(block);
    }
}

TEST(MTHeap, LaysTheBlocksOfAChunkOutInOrder)
{
    MTHeap heap;
    const auto* first = static_cast<char*>(heap.alloc(60));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(first) % 65536, 16u);
    constexpr int kCount = 65520 / 64;
    for (int i = 1; i < kCount; ++i)
        ASSERT_EQ(heap.alloc(60), first + i * 64);
    EXPECT_EQ(heap.alloc(60), first + 65536) << "the next chunk";
    EXPECT_EQ(heap.alloc(kOneToAChunk), first + 2 * 65536);
    EXPECT_EQ(heap.alloc(kOneToAChunk), first + 3 * 65536) << "only one of these fits a chunk";
}

TEST(MTHeap, HandsAReleasedBlockToTheThreadsNextRequest)
{
    MTHeap heap;
    void* first = heap.alloc(100);
    void* second = heap.alloc(100);
    std::thread([&] {
        heap.deAlloc(first);
        heap.deAlloc(second);
        EXPECT_EQ(heap.alloc(100), second);
        EXPECT_EQ(heap.alloc(108), first) << "any size of the bin";
    }).join();
}

// What other threads release serves everybody before a bin takes more memory: one thread allocates
// for ever and another releases.
TEST(MTHeap, UsesWhatOtherThreadsHaveReleased)
{
    for (const std::size_t size : {0u, 60u, 1000u, 9000u, 32'764u}) {
        MTHeap heap;
        std::set<std::uintptr_t> chunks;
        std::vector<void*> handedOver;
        for (int round = 0; round < 50; ++round) {
            for (std::size_t bytes = 0; bytes < 4 * MTHeap::kChunkSize; bytes += size + 16) {
                handedOver.push_back(heap.alloc(size));
                chunks.insert(reinterpret_cast<std::uintptr_t>(handedOver.back()) /
                              MTHeap::kChunkSize);
            }
            std::thread([&] {
                for (void* block : handedOver)
                    heap.deAlloc(block);
            }).join();
            handedOver.clear();
        }
        // Blocks of over 16 KiB fill but half of a chunk.
        EXPECT_LE(chunks.size(), 10u) << size;
    }
}

// Batches are put together and taken apart; no block is ever lost or handed out twice.
TEST(MTHeap, KeepsEveryBlockThroughManyReleases)
{
    MTHeap heap;
    constexpr std::size_t kSize = 100;
    std::vector<void*> blocks;
    std::set<void*> first;
    for (int i = 0; i < 2000; ++i)
        first.insert(heap.alloc(kSize));
    for (const int releasedAtOnce : {1, 127, 128, 129, 1000, 2000}) {
        blocks.assign(first.begin(), first.end());
        for (int round = 0; round < 5; ++round) {
            for (int i = 0; i < releasedAtOnce; ++i) {
                heap.deAlloc(blocks.back());
                blocks.pop_back();
            }
            for (int i = 0; i < releasedAtOnce; ++i)
                blocks.push_back(heap.alloc(kSize));
        }
        EXPECT_EQ(std::set<void*>(blocks.begin(), blocks.end()), first) << releasedAtOnce;
    }
}

TEST(MTHeap, RefusesToReleaseWhatCannotBeABlock)
{
    MTHeap heap;
    alignas(65536) static char foreign[64];
    auto* first = static_cast<char*>(heap.alloc(40)); // the bin's distance is 48
    auto* second = static_cast<char*>(heap.alloc(40));
    ASSERT_EQ(second, first + 48);
    heap.deAlloc(nullptr);

    struct Row
    {
        const char* what;
        char* pointer;
        std::uint32_t header;
    };
    const Row rows[] = {{"inside a block", first + 16, 40},
                        {"a block of another bin", second, 5000},
                        {"foreign memory", foreign + 32, 20}};
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const std::uint32_t before = headerOf(row.pointer);
        setHeader(row.pointer, row.header);
        for (const bool resize : {false, true})
            try {
                if (resize)
                    heap.reAlloc(row.pointer, 6000);
                else
                    heap.deAlloc(row.pointer);
                ADD_FAILURE() << "was taken";
            } catch (const Tq::Exception::RuntimeError& error) {
                EXPECT_STREQ(error.typeName(), "RuntimeError");
                EXPECT_STREQ(error.message(),
                             "Attempt to free invalid pointer (invalid alignment)");
                EXPECT_STREQ(error.file(), "OS/Shared/TqHeap_MultiThreaded");
            }
        setHeader(row.pointer, before);
    }
    EXPECT_EQ(outputOf([&] {
                  setHeader(first + 24, 0);
                  EXPECT_THROW(heap.deAlloc(first + 24), Tq::Exception::RuntimeError);
              }),
              "assertion failed ((size_t) mem & (iHeap::kMemAlignment - 1)) == 0 at "
              "OS/Shared/TqHeap_MultiThreaded line 213\n");
    heap.deAlloc(first);
    EXPECT_EQ(heap.alloc(40), first) << "the heap is unharmed";
}

TEST(MTHeap, ResizesInPlaceWhereTheBinAllowsAndKeepsTheContents)
{
    MTHeap heap;
    struct Row
    {
        std::size_t from, to;
        bool stays;
        std::size_t header;
    };
    const Row rows[] = {
        {20, 28, true, 28},
        {20, 29, false, 29},
        {20, 13, true, 13},
        {20, 12, true, 13}, // the header keeps the smallest size of the bin
        {20, 0, true, 13},
        {12, 0, true, 0},
        {32764, 1, true, 32749},
        {100, 32764, false, 32764},
        {100, 100'000, false, 100'000},
        {100'000, 100, false, 100},
        {100'000, 32764, false, 32764},
        {100'000, 32765, false, 32765},
        {100'000, 32768, false, 32768}, // moves, and is a large block again: deliberate
        {100'000, 32769, true, 32769},
        {32765, 32768, false, 32768},
        {100'000, 400'000, true, 400'000}, // nothing behind it
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.from << " to " << row.to);
        void* block = heap.alloc(row.from);
        fill(block, row.from, 3);
        void* resized = heap.reAlloc(block, row.to);
        EXPECT_EQ(resized == block, row.stays);
        EXPECT_EQ(headerOf(resized), row.header);
        EXPECT_EQ(isLarge(resized), row.to > 32764);
        EXPECT_TRUE(holds(resized, std::min(row.from, row.to), 3));
        std::memset(resized, 1, row.to);
        heap.deAlloc(resized);
    }
    void* fresh = heap.reAlloc(nullptr, 77);
    EXPECT_EQ(headerOf(fresh), 77u);
    void* shrunk = heap.reAlloc(fresh, 3);
    heap.deAlloc(shrunk);
    EXPECT_EQ(heap.alloc(77), shrunk) << "a block that shrank goes back to its own bin";
}

TEST(MTHeap, SizesThatNoAddressSpaceHoldsEndInBadAlloc)
{
    MTHeap heap;
    constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
    void* small = heap.alloc(20);
    void* large = heap.alloc(50'000);
    fill(small, 20, 1);
    fill(large, 50'000, 2);
    outputOf([&] {
        for (const std::size_t size :
             {kMost, kMost - 2, kMost - 3, kMost - 15, kMost - 16, kMost - 31, kMost - 32,
              kMost / 2, kMost / 2 + 1, (std::size_t(1) << 47) + 1}) {
            SCOPED_TRACE(size);
            EXPECT_THROW(heap.alloc(size), std::bad_alloc);
            EXPECT_THROW(heap.reAlloc(small, size), std::bad_alloc);
            EXPECT_EQ(heap.reAlloc(large, size), nullptr);
            EXPECT_THROW(MTHeap::osAlloc(size), std::bad_alloc);
        }
    });
    EXPECT_TRUE(holds(small, 20, 1));
    EXPECT_TRUE(holds(large, 50'000, 2));
    heap.deAlloc(small);
    heap.deAlloc(large);
}

TEST(MTHeap, WaitsWhileTheAnswerIsNull)
{
    StingyHeap heap;
    heap.nullAnswers = 2;
    exhaust(heap);
    EXPECT_TRUE(heap.retrying) << "others can see that memory is short";
    EXPECT_FALSE(heap.outOfMemory());
    EXPECT_EQ(heap.requests, 3);
}

TEST(MTHeap, ARefusedRegionEndsInBadAllocAndLeavesTheHeapUsable)
{
    StingyHeap heap;
    heap.refuse = true;
    const std::vector<void*> blocks = exhaust(heap);
    EXPECT_EQ(heap.requests, 1);
    EXPECT_GE(blocks.size(), 62u);
    EXPECT_THROW(heap.alloc(kOneToAChunk), std::bad_alloc) << "no lock is left behind";
    EXPECT_THROW(heap.reAlloc(blocks[0], 16'000'000'000'000'000), std::bad_alloc);
    EXPECT_THROW(heap.alloc(5), std::bad_alloc);
    heap.deAlloc(blocks[0]);
    EXPECT_EQ(heap.alloc(kOneToAChunk), blocks[0]);

    heap.refuse = false;
    std::memset(heap.alloc(5), 1, 5);
}

TEST(MTHeap, EveryCallThatTheSystemRefusesIsSurvived)
{
    for (const char* call : {"mmap", "malloc"}) {
        SCOPED_TRACE(call);
        bool built = false;
        for (int skip = 0; !built && skip < 10; ++skip) {
            RefusedMemory refusal(call, skip, 1);
            try {
                const MTHeap heap;
                built = refusal.refused() == 0;
            } catch (const std::bad_alloc&) {
            }
        }
        EXPECT_TRUE(built);

        StingyHeap heap;
        for (int regions = 0; regions < 4; ++regions) {
            const RefusedMemory refusal(call, 0, 1);
            exhaust(heap);
            std::memset(heap.alloc(kOneToAChunk), 1, kOneToAChunk);
        }
    }
}

TEST(MTHeap, HeapsAreIndependentAndTakeTheirRegionsWithThem)
{
    auto first = std::make_unique<MTHeap>();
    MTHeap second;
    void* block = first->alloc(64);
    void* large = first->alloc(64'000);
    std::set<void*> others;
    for (int i = 0; i < 70'000; ++i) // more than one region
        others.insert(second.alloc(60));
    EXPECT_EQ(others.count(block), 0u);
    unsigned char resident;
    void* page = reinterpret_cast<void*>(reinterpret_cast<std::uintptr_t>(block) & ~4095ull);
    EXPECT_EQ(mincore(page, 1, &resident), 0);
    first.reset();
    EXPECT_EQ(mincore(page, 1, &resident), -1) << "unmapped";
    EXPECT_TRUE(isLarge(large)) << "a large block outlives its heap";
    second.deAlloc(large);
    EXPECT_FALSE(isLarge(large));
}

TEST(MTHeap, ReportsTheCachesThenTheLargeObjects)
{
    MTHeap heap;
    struct Cache : iReclaimable
    {
        void purge() override {}
        void limitUsage() override {}
        void reportUsage() override { std::printf("cache\n"); }
    } cache;
    heap.registerReclaimable(&cache);
    const std::string output = outputOf([&] { heap.report(); });
    EXPECT_TRUE(output.starts_with("cache\n")) << output;
    EXPECT_NE(output.find("Mb in pool size "), std::string::npos) << output;
    EXPECT_TRUE(heap.isPointerValid(nullptr));
}

TEST(MTHeap, TheGlobalSettingsSayHowLargeThePoolIs)
{
    for (const PoolSetting& setting : poolSettings) {
#ifdef OS_TESTS_UNDER_SANITIZER
        if (!setting.text)
            continue; // the sanitizer may leave no room for it
#endif
        EXPECT_EQ(setting.tookOneMegabyteFrom, setting.pool ? 1 : 2)
            << (setting.text ? setting.text : "no setting");
    }
}
