// Plays what real programs asked of their allocator against the heaps. The traces lie in
// $HEAP_TRACES, where the test "ProgramsRecord" puts them.

#include "OS/Shared/OsHeap.h"
#include "OS/Shared/TqHeap_Debug.h"
#include "programs/Recording.h"
#include "support/Stopwatch.h"

#include <OS/Shared/MTHeap.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <mutex>
#include <thread>

namespace {

using Trace::Call;

/// One run of a recording on a heap: every recorded thread is a thread here, and a call on a block
/// waits for the calls on it that came before. Each block is filled with a pattern of its own.
class Replay
{
public:
    enum class Headers
    {
        eNone,
        eSizeInFront
    };

    Replay(iHeap& heap, const Recording& recording, Headers headers)
        : heap_(heap), recording_(recording), headers_(headers),
          blocks_(std::make_unique<Block[]>(recording.blocks))
    {
    }

    /// @return what went wrong first, or nothing
    std::string run()
    {
        std::vector<std::thread> threads;
        for (const auto& steps : recording_.threads)
            threads.emplace_back([&] {
                for (const Recording::Step& step : steps)
                    take(step);
            });
        for (std::thread& thread : threads)
            thread.join();
        for (std::size_t i = 0; i < recording_.blocks; ++i)
            if (blocks_[i].address)
                release(blocks_[i], i);
        return fault_;
    }

private:
    struct Block
    {
        std::atomic<std::uint32_t> turn{0};
        unsigned char* address = nullptr;
        std::size_t size = 0;
        bool aligned = false; // from the C allocator: no heap of ours aligns beyond 16
    };

    void take(const Recording::Step& step)
    {
        const Trace::Record& record = step.record;
        Block& block = blocks_[record.block];
        while (block.turn.load(std::memory_order_acquire) != step.turn)
            std::this_thread::yield();
        switch (record.call) {
        case Call::eAlloc:
            placed(block, record, heap_.alloc(record.size));
            break;
        case Call::eAligned:
            block.aligned = true;
            placed(block, record,
                   std::aligned_alloc(std::size_t(1) << record.alignmentLog2,
                                      alignedSize(record.size, record.alignmentLog2)));
            break;
        case Call::eResize:
            resize(block, record);
            break;
        case Call::eRelease:
            release(block, record.block);
            break;
        }
        block.turn.store(step.turn + 1, std::memory_order_release);
    }

    static std::size_t alignedSize(std::size_t size, unsigned alignmentLog2)
    {
        const std::size_t alignment = std::size_t(1) << alignmentLog2;
        return (size + alignment - 1) & ~(alignment - 1);
    }

    void placed(Block& block, const Trace::Record& record, void* address)
    {
        block.address = static_cast<unsigned char*>(address);
        block.size = record.size;
        if (!address)
            return fail(record.block, "there was no memory");
        if (reinterpret_cast<std::uintptr_t>(address) % iHeap::kMemAlignment != 0)
            fail(record.block, "it is not aligned");
        checkHeader(block, record.block);
        std::memset(address, patternOf(record.block), block.size);
    }

    void resize(Block& block, const Trace::Record& record)
    {
        check(block, record.block, block.size);
        void* moved = block.aligned ? std::realloc(block.address, record.size)
                                    : heap_.reAlloc(block.address, record.size);
        const std::size_t kept = std::min<std::size_t>(block.size, record.size);
        if (moved) {
            block.address = static_cast<unsigned char*>(moved);
            check(block, record.block, kept);
        }
        placed(block, record, moved);
    }

    void release(Block& block, std::size_t number)
    {
        check(block, number, block.size);
        checkHeader(block, number);
        if (block.aligned)
            std::free(block.address);
        else
            heap_.deAlloc(block.address);
        block.address = nullptr;
    }

    static unsigned char patternOf(std::size_t block)
    {
        return static_cast<unsigned char>(block % 251 + 1);
    }

    void check(const Block& block, std::size_t number, std::size_t size)
    {
        if (size > 0 && (block.address[0] != patternOf(number) ||
                         std::memcmp(block.address, block.address + 1, size - 1) != 0))
            fail(number, "its contents have changed");
    }

    // A block that shrank in its place keeps at least the smallest size of its bin there.
    void checkHeader(const Block& block, std::size_t number)
    {
        if (headers_ == Headers::eNone || block.aligned)
            return;
        std::uint32_t header = 0;
        std::memcpy(&header, block.address - sizeof header, sizeof header);
        const bool exact = header == block.size;
        const bool shrunk = header > block.size &&
                            header <= Tq::MTHeap::getBinFreeSize(Tq::MTHeap::kBinCount - 1) &&
                            header % 16 == 13;
        if (!exact && !shrunk)
            fail(number, "its header is not its size");
    }

    void fail(std::size_t block, const char* what)
    {
        const std::lock_guard guard(faultLock_);
        if (fault_.empty())
            fault_ = "block " + std::to_string(block) + ": " + what;
    }

    iHeap& heap_;
    const Recording& recording_;
    const Headers headers_;
    const std::unique_ptr<Block[]> blocks_;
    std::mutex faultLock_;
    std::string fault_;
};

std::vector<std::string> traces()
{
    std::vector<std::string> paths;
    const char* folder = std::getenv("HEAP_TRACES");
    if (folder && std::filesystem::is_directory(folder))
        for (const auto& entry : std::filesystem::directory_iterator(folder))
            if (entry.path().stem() == "trace")
                paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    return paths;
}

} // namespace

TEST(Programs, EveryKindOfProgramWasRecorded)
{
    std::vector<std::string> programs;
    std::size_t handedOver = 0;
    for (const std::string& path : traces()) {
        const Recording recording = Recording::read(path);
        programs.push_back(recording.program);
        handedOver += recording.handedOver;
        std::printf(
            "%s: %zu calls of %zu threads, %zu blocks, %zu calls on another thread's block\n",
            recording.program.c_str(), recording.steps, recording.threads.size(), recording.blocks,
            recording.handedOver);
        EXPECT_GT(recording.steps, 100u) << recording.program;
    }
    for (const char* start : {"cc1plus", "python", "sqlite3"})
        EXPECT_TRUE(std::any_of(programs.begin(), programs.end(), [&](const std::string& name) {
            return name.starts_with(start);
        })) << start;
    EXPECT_GT(handedOver, 1'000u);
}

TEST(Programs, RunOnTheHeapForManyThreads)
{
    for (const std::string& path : traces()) {
        const Recording recording = Recording::read(path);
        Tq::MTHeap heap;
        const Stopwatch stopwatch;
        EXPECT_EQ(Replay(heap, recording, Replay::Headers::eSizeInFront).run(), "")
            << recording.program;
        std::printf("%s: %lld ms\n", recording.program.c_str(),
                    static_cast<long long>(stopwatch.elapsedMs()));
    }
}

TEST(Programs, RunOnTheDebugHeap)
{
    constexpr std::size_t kMostSteps = 20'000;
    for (const std::string& path : traces()) {
        const Recording recording = Recording::read(path, kMostSteps);
        Tq::DebugHeap heap;
        EXPECT_EQ(Replay(heap, recording, Replay::Headers::eNone).run(), "") << recording.program;
        EXPECT_EQ(heap.check(), 0u);
    }
}
