#include "OS/Mac/Threads/ThreadManager.h"
#include "Threads/SystemCalls.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

iThreadManager& manager()
{
    return *OS()->threadMgr();
}

} // namespace

TEST(ThreadManager, SleepsOnceForWholeSecondsAndTheRest)
{
    FakeTime time;
    time.pauseResults = {-1};
    manager().sleep(1500);
    ASSERT_EQ(time.pauses.size(), 1u) << "an interrupted sleep is not resumed";
    EXPECT_EQ(time.pauses[0].tv_sec, 1);
    EXPECT_EQ(time.pauses[0].tv_nsec, 500'000'000);
}

TEST(ThreadManager, DeadlinesCarryIntoTheSeconds)
{
    struct Row
    {
        timespec now;
        unsigned int timeMs;
        timespec deadline;
    };
    constexpr Row kRows[] = {
        {{10, 999'000'000}, 2, {11, 1'000'000}},
        {{10, 999'000'000}, 1, {11, 0}},
        {{10, 998'999'999}, 1, {10, 999'999'999}},
        {{10, 0}, 0, {10, 0}},
        {{10, 500'000'000}, 4'294'967'294u, {4'294'977, 794'000'000}},
    };
    for (const Row& row : kRows) {
        FakeTime time;
        time.now = row.now;
        timespec deadline;
        ThreadManager::MsecToTimespecAbs(deadline, row.timeMs);
        EXPECT_EQ(deadline.tv_sec, row.deadline.tv_sec) << row.timeMs;
        EXPECT_EQ(deadline.tv_nsec, row.deadline.tv_nsec) << row.timeMs;
    }
}

TEST(ThreadManager, FindsANamedEventAgainWithItsFirstFlags)
{
    const auto event = manager().createEvent(false, false, "ThreadManagerTest.flags");
    const auto again = manager().createEvent(true, true, "ThreadManagerTest.flags");
    EXPECT_EQ(event, again);
    EXPECT_EQ(again->wait(0), iWaitable::eWaitTimedOut);
    again->set();
    EXPECT_EQ(event->wait(0), iWaitable::eWaitSignalled);
    EXPECT_EQ(event->wait(0), iWaitable::eWaitTimedOut);
    EXPECT_FALSE(event == manager().createEvent(false, false, nullptr));
    EXPECT_FALSE(event == manager().createEvent(false, false, ""));
}

TEST(ThreadManager, KeepsANamedEventThatNobodyHolds)
{
    manager().createEvent(true, false, "ThreadManagerTest.kept")->set();
    EXPECT_EQ(manager().createEvent(true, false, "ThreadManagerTest.kept")->wait(0),
              iWaitable::eWaitSignalled);
}

TEST(ThreadManager, GivesOneNamedEventToThreadsThatAskAtOnce)
{
    constexpr int kThreads = 8;
    constexpr int kNames = 200;
    std::atomic<int> first{0};
    BackgroundThreads threads(kThreads, [&] {
        for (int i = 0; i < kNames; ++i) {
            const std::string name = "ThreadManagerTest.race" + std::to_string(i);
            // Auto-reset and set at first: exactly one thread finds it so, if there is only one
            // event.
            first += manager().createEvent(false, true, name.c_str())->wait(0) ==
                     iWaitable::eWaitSignalled;
        }
    });
    threads.join();
    EXPECT_EQ(first, kNames);
}

TEST(ThreadManager, ExecutesAFunctionWithoutProtection)
{
    static int argument = 0;
    const auto handler = [](const iThread::Exception&) { FAIL() << "the handler is never called"; };
    const auto function = [](void* where) -> iThread::eExecRC {
        if (++*static_cast<int*>(where) == 2)
            throw std::runtime_error("passes through");
        return iThread::eExecFailed;
    };
    EXPECT_EQ(manager().protectedExecute(function, &argument, handler), 0);
    EXPECT_THROW(manager().protectedExecute(function, &argument, handler), std::runtime_error);
    EXPECT_EQ(argument, 2);
}

TEST(ThreadManager, IdentifiesThreadsAsTheKernelDoes)
{
    EXPECT_EQ(manager().getCurrentThreadID(), static_cast<std::uint32_t>(gettid()));
    EXPECT_NE(BackgroundThread([] { return manager().getCurrentThreadID(); }).result(),
              manager().getCurrentThreadID());
}

TEST(ThreadManager, DoesNotOpenMutexes)
{
    EXPECT_EQ(outputOf([] { EXPECT_FALSE(manager().openMutex("any")); }),
              "assertion failed false at OS/Mac/ThreadManager line 114\n");
}
