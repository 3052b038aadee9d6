#include "OS/Mac/Files/File.h"
#include "Files/SteppingClock.h"
#include "Files/WideFolder.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Files/iFileManager.h>

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr unsigned int kFailed = 0xFFFFFFFF;
constexpr unsigned long long k100nsPerSecond = 10'000'000;

class FileTest : public testing::Test
{
protected:
    Tq::Ptr<iFile> open(const std::string& name, unsigned int access = iFile::eAccessRead,
                        iFile::eOpenBehaviour behaviour = iFile::eOpenExisting,
                        std::uint32_t flags = 0) const
    {
        return OS()->fileMgr()->openFile(folder_.wide(name), access, behaviour, iFile::eShareNone,
                                         flags);
    }
    static bool put(iFile& file, std::string text)
    {
        return file.write(text.data(), static_cast<unsigned int>(text.size()));
    }
    static std::string get(iFile& file, unsigned int length)
    {
        std::string text(length, '\0');
        text.resize(file.read(text.data(), length));
        return text;
    }

    WideFolder folder_;
};

} // namespace

TEST_F(FileTest, BehavioursDecideWhatMayBeThere)
{
    struct Case
    {
        int behaviour;
        bool there;
        bool opens;
        const char* left;
    };
    for (const Case& c : {
             Case{iFile::eOpenExisting, true, true, "old"},
             Case{iFile::eOpenExisting, false, false, "(none)"},
             Case{iFile::eCreateNew, true, false, "old"},
             Case{iFile::eCreateNew, false, true, ""},
             Case{iFile::eCreateAlways, true, true, ""},
             Case{iFile::eCreateAlways, false, true, ""},
             Case{iFile::eTruncateExisting, true, true, ""},
             Case{iFile::eTruncateExisting, false, true, ""},
             Case{4, true, true, "old"},
             Case{-1, false, false, "(none)"},
         }) {
        ::unlink(folder_.path("file").c_str());
        if (c.there)
            folder_.write("file", "old");
        const auto file =
            open("file", iFile::eAccessReadWrite, static_cast<iFile::eOpenBehaviour>(c.behaviour));
        EXPECT_EQ(bool(file), c.opens) << c.behaviour << c.there;
        EXPECT_EQ(folder_.read("file"), c.left) << c.behaviour << c.there;
    }
}

TEST_F(FileTest, AccessDecidesWhatMayBeDone)
{
    struct Case
    {
        unsigned int access;
        bool reads;
        bool writes;
    };
    for (const Case& c :
         {Case{1, true, false}, Case{2, false, true}, Case{3, true, true}, Case{0, true, false},
          Case{4, true, false}, Case{5, true, false}, Case{6, false, true}, Case{7, false, true}}) {
        folder_.write("file", "text");
        const auto file = open("file", c.access);
        ASSERT_TRUE(file);
        char byte = 'x';
        EXPECT_EQ(file->read(&byte, 1), c.reads ? 1u : kFailed) << c.access;
        EXPECT_EQ(file->write(&byte, 1), c.writes) << c.access;
    }
}

TEST_F(FileTest, ShortReadsAndOffsetsBeyondTheEndAreNoFailures)
{
    folder_.write("file", "0123456789abcdef");
    const auto file = open("file");
    char buffer[100];
    ASSERT_TRUE(file->positionAt(6));
    EXPECT_EQ(file->read(buffer, 100), 10u);
    EXPECT_EQ(file->getPosition(), 16);
    EXPECT_EQ(file->read(buffer, 100), 0u);
    EXPECT_EQ(file->readAt(1000, buffer, 100), 0u);
    EXPECT_EQ(file->getPosition(), 1000) << "the seek succeeds";
    EXPECT_EQ(file->readAt(4, buffer, 3), 3u);
    EXPECT_EQ(std::string(buffer, 3), "456");
    EXPECT_EQ(get(*file, 2), "78") << "the position stays behind a positioned read";
    EXPECT_EQ(file->readAt(~0ull, buffer, 1), 0u) << "no such position";
    EXPECT_FALSE(file->positionAt(1ull << 63));
    EXPECT_EQ(file->getPosition(), 9) << "a refused seek moves nothing";
}

TEST_F(FileTest, WritesWhereThePositionIs)
{
    const auto file = open("file", iFile::eAccessReadWrite, iFile::eCreateNew);
    EXPECT_TRUE(put(*file, "abcdef"));
    char mark[] = "XY";
    EXPECT_TRUE(file->writeAt(2, mark, 2));
    EXPECT_TRUE(put(*file, "Z"));
    EXPECT_EQ(file->getSize(), 6);
    EXPECT_TRUE(file->writeAt(8, mark, 1)) << "beyond the end: a hole";
    EXPECT_EQ(folder_.read("file"), std::string("abXYZf\0\0X", 9));
    EXPECT_FALSE(file->writeAt(~0ull, mark, 1));
    EXPECT_FALSE(file->truncate(1));
    EXPECT_EQ(file->getSize(), 9);
    file->recalculateSize();
    EXPECT_EQ(file->getCaps(), 0u);
    EXPECT_EQ(file->getFileName(), folder_.wide("file"));
}

TEST_F(FileTest, GoesBeyondFourGigabytes)
{
    constexpr unsigned long long kFar = (5ull << 30) + 3;
    const auto file = open("file", iFile::eAccessReadWrite, iFile::eCreateNew);
    char text[] = "far";
    ASSERT_TRUE(file->writeAt(kFar, text, 3));
    EXPECT_EQ(file->getPosition(), static_cast<std::int64_t>(kFar) + 3);
    EXPECT_EQ(file->getSize(), static_cast<std::int64_t>(kFar) + 3);
    EXPECT_EQ(OS()->fileMgr()->getFileSize(folder_.wide("file")), kFar + 3);
    char back[3] = {};
    EXPECT_EQ(file->readAt(kFar, back, 3), 3u);
    EXPECT_EQ(std::string(back, 3), "far");
}

TEST_F(FileTest, DeleteOnCloseRemovesAlsoWhatCouldNotBeOpened)
{
    folder_.write("file", "mine");
    {
        const auto file = open("file", iFile::eAccessRead, iFile::eOpenExisting, 0x20);
        EXPECT_EQ(folder_.read("file"), "mine");
    }
    EXPECT_EQ(folder_.entries(), 0u);
    folder_.write("file", "another's");
    EXPECT_FALSE(open("file", iFile::eAccessWrite, iFile::eCreateNew, 0x20));
    EXPECT_EQ(folder_.entries(), 0u);
}

TEST_F(FileTest, SetTimeSetsBothTimesInWholeSeconds)
{
    const auto file = open("file", iFile::eAccessReadWrite, iFile::eCreateNew);
    constexpr unsigned long long kSeconds = 1'600'000'000;
    EXPECT_TRUE(file->setTime(iFile::eLastWriteTime, kSeconds * k100nsPerSecond + 9'999'999));
    EXPECT_EQ(file->getTime(iFile::eLastWriteTime), kSeconds * k100nsPerSecond);
    EXPECT_EQ(file->getTime(iFile::eLastAccessTime), kSeconds * k100nsPerSecond);
    EXPECT_FALSE(file->setTime(iFile::eCreationTime, 0));
    EXPECT_TRUE(file->setTime(iFile::eLastAccessTime, (kSeconds + 1) * k100nsPerSecond));
    EXPECT_EQ(file->getTime(iFile::eLastWriteTime), (kSeconds + 1) * k100nsPerSecond);
    const std::uint64_t changed = file->getTime(iFile::eCreationTime);
    EXPECT_EQ(changed % k100nsPerSecond, 0u);
    EXPECT_GT(changed, (kSeconds + 1) * k100nsPerSecond) << "the time of the status change: now";
}

TEST_F(FileTest, AsynchronousTransfersAreRefusedWithALine)
{
    folder_.write("file", "text");
    const auto file = open("file", iFile::eAccessReadWrite);
    std::array<char, 4> buffer = {'k', 'e', 'e', 'p'};
    const auto line = [](const char* number) {
        return std::string("assertion failed false at OS/Mac/File line ") + number + "\n";
    };
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(file->readAsync(buffer.data(), 4, {})); }), line("163"));
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(file->readAtAsync(0, buffer.data(), 4, {})); }),
              line("170"));
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(file->writeAsync(buffer.data(), 4, {})); }), line("190"));
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(file->writeAtAsync(0, buffer.data(), 4, {})); }),
              line("208"));
    EXPECT_EQ(std::string(buffer.data(), 4), "keep");
    EXPECT_EQ(folder_.read("file"), "text");
}

// The clock starts at 1000 s and each look at it takes the time of the case.
TEST_F(FileTest, SlowReadsAreReported)
{
    folder_.write("file", "text");
    const auto file = open("file", iFile::eAccessReadWrite);
    char byte;
    const auto printed = [&](int stepMs, auto transfer) {
        return outputOf([&] {
            const SteppingClock clock(stepMs);
            transfer();
        });
    };
    const auto read = [&] { EXPECT_EQ(file->read(&byte, 1), 1u); };
    EXPECT_EQ(printed(10, read), "") << "more than 10 ms";
    EXPECT_EQ(printed(11, read), "1000.022 : read elapsed 11.000ms\n");

    const auto readAt = [&](unsigned long long offset) {
        return [&, offset] { file->readAt(offset, &byte, 1); };
    };
    EXPECT_EQ(printed(10, readAt(0)), "");
    EXPECT_EQ(printed(21, readAt(0)), "1000.042 : read elapsed 21.000ms\nread elapsed 21.000ms\n");
    EXPECT_EQ(printed(10, readAt(2)), "") << "seek and read together took 20 ms";
    EXPECT_EQ(printed(11, readAt(3)), "1000.033 : read elapsed 11.000ms\nread elapsed 22.000ms\n");
    EXPECT_EQ(printed(21, readAt(4)), "seek elapsed 21.000ms\n1000.063 : read elapsed "
                                      "21.000ms\nread elapsed 42.000ms\n");
    EXPECT_EQ(printed(50, [&] { file->writeAt(0, &byte, 1); }), "") << "writes are not timed";
}

TEST_F(FileTest, PipesTransferButHaveNoPosition)
{
    ASSERT_EQ(mkfifo(folder_.path("pipe").c_str(), 0600), 0);
    const auto pipe = open("pipe", iFile::eAccessReadWrite); // both ends: nobody to wait for
    ASSERT_TRUE(pipe);
    EXPECT_TRUE(put(*pipe, "through"));
    char buffer[16];
    EXPECT_EQ(pipe->readAt(0, buffer, 16), 0u) << "a failed seek reads nothing";
    EXPECT_FALSE(pipe->writeAt(0, buffer, 1));
    EXPECT_FALSE(pipe->positionAt(0));
    EXPECT_EQ(pipe->getPosition(), -1);
    EXPECT_EQ(pipe->read(buffer, 16), 7u);
}

TEST_F(FileTest, FoldersOpenButDoNotRead)
{
    const auto folder = open("");
    ASSERT_TRUE(folder);
    char byte;
    EXPECT_EQ(folder->read(&byte, 1), kFailed);
    EXPECT_FALSE(open("", iFile::eAccessWrite));
}

TEST_F(FileTest, IsNotInheritedByPrograms)
{
    const auto file = open("file", iFile::eAccessWrite, iFile::eCreateNew);
    const std::string path = folder_.path("file");
    for (int fd = 0; fd < 256; ++fd) {
        char target[4096] = {};
        const std::string link = "/proc/self/fd/" + std::to_string(fd);
        if (readlink(link.c_str(), target, sizeof target - 1) > 0 && path == target) {
            EXPECT_TRUE(fcntl(fd, F_GETFD) & FD_CLOEXEC);
        }
    }
}

// A disk that is full half-way: the file-size limit makes the same short write.
TEST_F(FileTest, AWriteThatFitsOnlyPartlyFails)
{
    const auto file = open("file", iFile::eAccessReadWrite, iFile::eCreateNew);
    rlimit old;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &old), 0);
    const rlimit limited = {6, old.rlim_max};
    const auto handler = signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &limited), 0);
    const bool whole = put(*file, "12345678");
    const bool more = put(*file, "9");
    setrlimit(RLIMIT_FSIZE, &old);
    signal(SIGXFSZ, handler);
    EXPECT_FALSE(whole);
    EXPECT_FALSE(more);
    EXPECT_EQ(file->getPosition(), 6) << "behind what was written";
    EXPECT_EQ(folder_.read("file"), "123456");
}

// Each block carries its own number: a positioned transfer that another thread's seek gets into
// reads a wrong one.
TEST_F(FileTest, PositionedTransfersOfManyThreadsDoNotMix)
{
    constexpr unsigned int kBlocks = 64;
    constexpr int kThreads = 4;
    const auto file = open("file", iFile::eAccessReadWrite, iFile::eCreateNew);
    for (unsigned int block = 0; block < kBlocks; ++block)
        ASSERT_TRUE(file->writeAt(block * sizeof block, &block, sizeof block));
    std::atomic<int> wrong{0};
    BackgroundThreads threads(kThreads, [&] {
        for (unsigned int i = 0; i < 3000; ++i) {
            unsigned int block = (i * 37) % kBlocks;
            unsigned int found = 0;
            if (i % 5 == 0)
                file->writeAt(block * sizeof block, &block, sizeof block);
            else if (i % 7 == 0)
                file->positionAt(block);
            else if (file->readAt(block * sizeof block, &found, sizeof found) != sizeof found ||
                     found != block)
                ++wrong;
        }
    });
    threads.join();
    EXPECT_EQ(wrong.load(), 0);
}
