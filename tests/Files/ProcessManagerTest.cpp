#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Files/ChildProcess.h"
#include "support/BackgroundThread.h"
#include "support/ChildProcess.h"
#include "support/OutputCapture.h"
#include "support/Stopwatch.h"
#include "support/TemporaryFolder.h"

#include <OS.h>
#include <OS/Files/iProcessManager.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fcntl.h>

namespace {

using InitArgs = iProcessManager::InitArgs;
constexpr unsigned int kLong = 30'000;

LightweightString<wchar_t> wide(const std::string& text)
{
    return OSInternal::textFromSystem(text);
}

// A shell is only the program that is started here; its script is one argument.
InitArgs script(const std::string& code, const std::vector<std::string>& more = {})
{
    InitArgs args;
    args.program_ = L"sh";
    args.arguments_ = {L"-c", wide(code), L"script"};
    for (const std::string& argument : more)
        args.arguments_.push_back(wide(argument));
    args.captureOutput_ = true;
    return args;
}

Tq::Ptr<iProcess> start(const InitArgs& args)
{
    return OS()->processMgr()->start(args);
}

std::string outputOfEnded(const InitArgs& args)
{
    const Tq::Ptr<iProcess> process = start(args);
    if (!process || !process->wait(kLong))
        return "(did not run to its end)";
    return process->getOutput().c_str();
}

bool isZombie(unsigned int id)
{
    std::ifstream status("/proc/" + std::to_string(id) + "/stat");
    std::string line;
    std::getline(status, line);
    return line.find(") Z ") != line.npos;
}

bool isThere(unsigned int id)
{
    return kill(static_cast<pid_t>(id), 0) == 0;
}

std::size_t openDescriptors()
{
    const auto entries = std::filesystem::directory_iterator("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

} // namespace

TEST(ProcessManager, PassesArgumentsExactly)
{
    const std::vector<std::string> arguments = {
        "plain",          "",   "two words",   "$HOME `ls` \"'\\",
        "//server/share", "-n", "line\nbreak", "\u00e9\u65e5",
        "raw\xFF\xFE",
    };
    std::string expected;
    for (const std::string& argument : arguments)
        expected += "<" + argument + ">";
    EXPECT_EQ(outputOfEnded(script("for a; do printf '<%s>' \"$a\"; done", arguments)), expected);
}

TEST(ProcessManager, TellsHowAChildEnded)
{
    const struct
    {
        const char* code;
        int expected;
    } cases[] = {{"exit 0", 0}, {"exit 7", 7}, {"exit 255", 255}, {"kill -KILL $$", 128 + SIGKILL}};
    for (const auto& c : cases) {
        const auto process = start(script(c.code));
        ASSERT_TRUE(process);
        EXPECT_TRUE(process->wait(kLong));
        EXPECT_FALSE(process->isRunning());
        EXPECT_EQ(process->getExitCode(), c.expected) << c.code;
        EXPECT_TRUE(process->wait(0)) << "again";
    }
}

TEST(ProcessManager, ReportsWhatCanNotBeStarted)
{
    const TemporaryFolder folder;
    folder.write("plain", "text");
    const std::string noProgram = folder.write("unknown-format", "text");
    chmod(noProgram.c_str(), 0755);
    const auto args = [](const std::string& program, const std::string& in = {}) {
        InitArgs result;
        result.program_ = wide(program);
        result.workingFolder_ = wide(in);
        return result;
    };
    InitArgs zero = args("true"), badName = args("true");
    zero.arguments_ = {LightweightString<wchar_t>(L"a\0b", 3)};
    badName.environment_ = {{L"a=b", L"c"}};
    const struct
    {
        InitArgs args;
        std::string reason;
    } cases[] = {
        {args(""), "cannot start : No such file or directory"},
        {args("no-such-program"), "cannot start no-such-program: No such file or directory"},
        {args(folder.path("missing")), "missing: No such file or directory"},
        {args(folder.path("plain")), "plain: Permission denied"},
        {args(folder.path("plain/x")), "plain/x: Not a directory"},
        {args(folder.path()), ": Permission denied"},
        {args(noProgram), "unknown-format: Exec format error"},
        {args("true", folder.path("gone")), "gone: No such file or directory"},
        {args("true", folder.path("plain")), "plain: Not a directory"},
        {zero, "cannot start true: Invalid argument"},
        {badName, "cannot start true: Invalid argument"},
    };
    // A folder of PATH that may not be searched would be the reason given for a missing program.
    const std::string path = std::getenv("PATH");
    setenv("PATH", "/usr/bin:/bin", 1);
    for (const auto& c : cases) {
        const std::string line = outputOf([&] { EXPECT_FALSE(start(c.args)); });
        EXPECT_TRUE(line.starts_with("ProcessManager::start() : cannot start ")) << line;
        EXPECT_TRUE(line.ends_with(c.reason + "\n")) << line;
        EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    }
    setenv("PATH", path.c_str(), 1);
}

TEST(ProcessManager, RunsInTheWorkingFolderWithTheEnvironmentAskedFor)
{
    const TemporaryFolder folder;
    const std::string program = folder.write("tool", "#!/bin/sh\npwd -P; echo \"$OS_A/$OS_B\"\n");
    chmod(program.c_str(), 0755);
    setenv("OS_A", "outer", 1);
    setenv("OS_B", "outer", 1);
    InitArgs args;
    args.captureOutput_ = true;
    args.program_ = wide(program);
    args.workingFolder_ = L"/";
    args.environment_ = {{L"OS_A", L"inner = \u00e9"}};
    EXPECT_EQ(outputOfEnded(args), "/\ninner = \u00e9/outer\n");
    args.inheritEnvironment_ = false;
    EXPECT_EQ(outputOfEnded(args), "/\ninner = \u00e9/\n");
    unsetenv("OS_A");
    unsetenv("OS_B");

    // A relative program is this process's, not the working folder's.
    const std::string before = std::filesystem::current_path();
    std::filesystem::current_path(folder.path());
    args.program_ = L"./tool";
    EXPECT_EQ(outputOfEnded(args), "/\ninner = \u00e9/\n");
    std::filesystem::current_path(before);
}

TEST(ProcessManager, KeepsOutputAndErrorsApart)
{
    const auto process = start(script("echo out; echo err >&2; exit 3"));
    ASSERT_TRUE(process && process->wait(kLong));
    EXPECT_EQ(process->getOutput(), "out\n");
    EXPECT_EQ(process->getErrors(), "err\n");

    InitArgs uncaptured = script("echo straight through");
    uncaptured.captureOutput_ = false;
    Tq::Ptr<iProcess> loud;
    const std::string seen = outputOf([&] {
        loud = start(uncaptured);
        loud->wait(kLong);
    });
    EXPECT_EQ(seen, "straight through\n");
    EXPECT_EQ(loud->getOutput(), "");
}

TEST(ProcessManager, FeedsAMegabyteThroughAChild)
{
    std::string bytes(1'000'000, '\0');
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<char>(i * 31 >> 3);
    InitArgs args;
    args.program_ = L"cat";
    args.captureOutput_ = args.provideInput_ = true;
    const auto process = start(args);
    ASSERT_TRUE(process);
    EXPECT_TRUE(process->writeInput(bytes.data(), bytes.size()));
    EXPECT_TRUE(process->isRunning()) << "more may come";
    EXPECT_EQ(process->getExitCode(), -1);
    process->closeInput();
    EXPECT_FALSE(process->writeInput("x", 1));
    EXPECT_TRUE(process->wait(kLong));
    const auto output = process->getOutput();
    EXPECT_TRUE(output.view() == bytes) << output.size();
}

TEST(ProcessManager, InputIsEmptyUnlessAskedForAndEndsWithTheProcessObject)
{
    InitArgs args;
    args.program_ = L"cat";
    args.captureOutput_ = true;
    auto process = start(args);
    ASSERT_TRUE(process);
    EXPECT_FALSE(process->writeInput("x", 1));
    EXPECT_TRUE(process->wait(kLong)) << "it reads the end at once";

    args.provideInput_ = true;
    process = start(args);
    const unsigned int id = process->getID();
    process.reset();
    EXPECT_TRUE(waitUntil([&] { return !isThere(id); }));
}

TEST(ProcessManager, AChildThatDoesNotReadEndsNobody)
{
    InitArgs args = script("exec <&-; echo closed; exec sleep 100");
    args.provideInput_ = true;
    const auto process = start(args);
    ASSERT_TRUE(process);
    ASSERT_TRUE(waitUntil([&] { return !process->getOutput().empty(); }));
    const std::string much(100'000, 'x');
    EXPECT_FALSE(process->writeInput(much.data(), much.size()));
    EXPECT_FALSE(process->writeInput(much.data(), much.size()));
    sigset_t pending;
    sigpending(&pending);
    EXPECT_EQ(sigismember(&pending, SIGPIPE), 0) << "no signal is left behind";
    EXPECT_TRUE(process->terminate(kLong));
}

TEST(ProcessManager, WaitsNoLongerThanAsked)
{
    const auto process = start(script("exec sleep 100"));
    ASSERT_TRUE(process);
    EXPECT_FALSE(process->wait(0));
    const Stopwatch stopwatch;
    EXPECT_FALSE(process->wait(50));
    EXPECT_GE(stopwatch.elapsedMs(), 50);
    BackgroundThread waiter([&] { return process->wait(iProcess::kForever); });
    waiter.waitUntilBlocked();
    EXPECT_TRUE(process->terminate(kLong));
    EXPECT_TRUE(waiter.result());
    EXPECT_EQ(process->getExitCode(), 128 + SIGTERM);
}

TEST(ProcessManager, KillsWhatDoesNotEndWhenAsked)
{
    const auto process = start(script("trap '' TERM; echo ready; while :; do sleep 0.01; done"));
    ASSERT_TRUE(process);
    ASSERT_TRUE(waitUntil([&] { return process->getOutput() == "ready\n"; }));
    EXPECT_TRUE(process->terminate(20));
    EXPECT_EQ(process->getExitCode(), 128 + SIGKILL);
    EXPECT_TRUE(process->terminate(20)) << "it has ended";
}

TEST(ProcessManager, CollectsChildrenThatNobodyWaitsFor)
{
    std::vector<unsigned int> ids;
    for (int i = 0; i < 20; ++i)
        ids.push_back(start(script("exit 0"))->getID());
    for (const unsigned int id : ids)
        EXPECT_TRUE(waitUntil([&] { return !isThere(id); })) << isZombie(id);
}

TEST(ProcessManager, LeavesTheApplicationsOwnChildrenAlone)
{
    ForkedChild own([] { return 5; });
    ASSERT_TRUE(waitUntil([&] { return isZombie(static_cast<unsigned int>(own.id())); }));
    ASSERT_TRUE(start(script("exit 0"))->wait(kLong));
    EXPECT_EQ(own.status(), 5);

    // The other way round: somebody else collects ours.
    signal(SIGCHLD, SIG_IGN);
    const auto process = start(script("exit 3"));
    EXPECT_TRUE(process->wait(kLong));
    EXPECT_EQ(process->getExitCode(), -1) << "nobody knows";
    signal(SIGCHLD, SIG_DFL);
}

TEST(ProcessManager, RunsManyChildrenAtOnceAndLeaksNoDescriptor)
{
    outputOfEnded(script("exit 0")); // the watcher's own are open from here on
    const std::size_t before = openDescriptors();
    std::atomic<int> wrong{0};
    BackgroundThreads clients(4, [&] {
        std::vector<Tq::Ptr<iProcess>> children;
        for (int i = 0; i < 10; ++i)
            children.push_back(
                start(script("echo " + std::to_string(i) + "; exit " + std::to_string(i))));
        for (int i = 0; i < 10; ++i) {
            const auto& child = children[static_cast<std::size_t>(i)];
            if (!child->wait(kLong) || child->getExitCode() != i ||
                child->getOutput() != (std::to_string(i) + "\n").c_str())
                ++wrong;
        }
    });
    clients.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_TRUE(waitUntil([&] { return openDescriptors() <= before; }));
}

TEST(ProcessManager, AChildGetsNoOtherDescriptorAndPlainSignals)
{
    const int leaky = open("/dev/null", O_RDONLY); // not closed on exec, as an application's may be
    signal(SIGPIPE, SIG_IGN);
    sigset_t blocked, before;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGUSR1);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    InitArgs list = script(""), grep = script("");
    list.program_ = L"ls";
    list.arguments_ = {L"/proc/self/fd"};
    grep.program_ = L"grep";
    grep.arguments_ = {L"-E", L"Sig(Blk|Ign)", L"/proc/self/status"};
    const std::string descriptors = outputOfEnded(list);
    const std::string signals = outputOfEnded(grep);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    signal(SIGPIPE, SIG_DFL);
    close(leaky);
    EXPECT_EQ(descriptors, "0\n1\n2\n3\n") << "the last is that of the list itself";
    EXPECT_EQ(signals, "SigBlk:\t0000000000000000\nSigIgn:\t0000000000000000\n");
}

TEST(ProcessManager, KeepsABoundedPartOfEndlessOutput)
{
    const auto process = start(script("head -c 100000000 /dev/zero; echo done >&2"));
    ASSERT_TRUE(process && process->wait(kLong));
    EXPECT_EQ(process->getErrors(), "done\n");
    ASSERT_TRUE(waitUntil([&] { return process->getOutput().size() == ChildProcess::kMostBytes; }));
    EXPECT_EQ(process->getOutput().size(), ChildProcess::kMostBytes);
}

TEST(ProcessManager, AGrandchildThatKeepsThePipeHoldsUpNobody)
{
    const auto process = start(script("sleep 100 & echo $!"));
    ASSERT_TRUE(process);
    EXPECT_TRUE(process->wait(kLong));
    const std::string output = process->getOutput().c_str();
    EXPECT_EQ(process->getExitCode(), 0);
    ASSERT_FALSE(output.empty());
    kill(std::stoi(output), SIGKILL);
}
