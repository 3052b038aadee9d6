#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <sys/wait.h>

using testing::AllOf;
using testing::HasSubstr;

namespace {

struct Outcome
{
    std::string text;
    int status = -1;
};

Outcome run(const std::string& environment, const std::string& what)
{
    Outcome outcome;
    const std::string command =
        "ulimit -c 0; exec env " + environment + " " OS_DEBUG_HEAP_PROGRAM " " + what + " 2>&1";
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe)
        return outcome;
    char buffer[4096];
    for (std::size_t count; (count = fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        outcome.text.append(buffer, count);
    outcome.status = pclose(pipe);
    return outcome;
}

} // namespace

TEST(DebugHeapChoice, TheEnvironmentLetsTheRootsHeapHandItsBlocksToADebugHeap)
{
    const std::string wanted = "VANTOR_DEBUG_HEAP=1";
    const Outcome overrun = run(wanted, "overrun");
    EXPECT_THAT(overrun.text, AllOf(HasSubstr("read or write 13 bytes behind a block of 100 bytes"),
                                    HasSubstr("makeBlock")));
    EXPECT_TRUE(WIFSIGNALED(overrun.status) && WTERMSIG(overrun.status) == SIGSEGV);
    EXPECT_THAT(run(wanted, "twice").text, AllOf(HasSubstr("is freed twice"), HasSubstr("end\n")));
    EXPECT_THAT(run(wanted, "leak").text,
                AllOf(HasSubstr("123456 bytes in 1 blocks"), HasSubstr("makeBlock")));
    EXPECT_EQ(run(wanted, "valid").text, "101\nend\n");
    // With and without a quarantine, correct code runs as ever; so do blocks of the C allocator.
    for (const std::string quarantine : {"", " VANTOR_DEBUG_HEAP_QUARANTINE_MB=0"}) {
        const Outcome work = run(wanted + quarantine, "work");
        EXPECT_EQ(work.text, "end\n");
        EXPECT_EQ(work.status, 0);
    }
}

TEST(DebugHeapChoice, WithoutItTheRootsHeapIsTheCAllocator)
{
    for (const std::string environment : {"-u VANTOR_DEBUG_HEAP", "VANTOR_DEBUG_HEAP=0"}) {
        EXPECT_EQ(run(environment, "leak").text, "end\n");
        EXPECT_EQ(run(environment, "valid").text, "111\nend\n");
    }
}
