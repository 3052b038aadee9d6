#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <functional>
#include <pthread.h>
#include <sched.h>

namespace {

// The body of a thread as a test writes it; it must outlive the thread.
using Body = std::function<void()>;

iThread::InitArgs argsFor(Body& body)
{
    iThread::InitArgs args;
    args.func_ = [](void* argument) {
        (*static_cast<Body*>(argument))();
        return iThread::eExecSucceeded;
    };
    args.arg_ = &body;
    return args;
}

Tq::Ptr<iThread> start(Body& body)
{
    return OS()->threadMgr()->createThread(argsFor(body));
}

void waitFor(const iThread& thread)
{
    thread.waitForCompletion(iWaitable::kNoTimeOut);
}

std::size_t stackSizeWith(std::uint32_t requested)
{
    std::size_t size = 0;
    Body body = [&] {
        pthread_attr_t attributes;
        pthread_getattr_np(pthread_self(), &attributes);
        pthread_attr_getstacksize(&attributes, &size);
        pthread_attr_destroy(&attributes);
    };
    auto args = argsFor(body);
    args.stackSize_ = requested;
    waitFor(*OS()->threadMgr()->createThread(args));
    return size;
}

std::string kernelNameOf(const char* name)
{
    char text[32] = {};
    Body body = [&] { pthread_getname_np(pthread_self(), text, sizeof text); };
    auto args = argsFor(body);
    args.name_ = name;
    waitFor(*OS()->threadMgr()->createThread(args));
    return text;
}

// Waits for the end of a thread that nobody can join.
bool endsByItself(pid_t id)
{
    const std::string task = "/proc/self/task/" + std::to_string(id);
    return waitUntil([&] { return access(task.c_str(), F_OK) != 0; });
}

class Counted : public iObject
{
public:
    explicit Counted(int& alive) : alive_(alive) { ++alive_; }
    ~Counted() override { --alive_; }

private:
    int& alive_;
};

} // namespace

TEST(Thread, TheNumbersOfThreadsCountFromOneWhateverTheirBodiesDo)
{
    // In a process of its own: the count is the process's.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            Body leave = [] { OS()->threadMgr()->exitCurrentThread(); };
            Body nothing = [] {};
            const auto first = start(leave);
            const auto second = start(nothing);
            waitFor(*first);
            waitFor(*second);
            std::_Exit(first->getID() == 1 && second->getID() == 2 ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

TEST(Thread, HasTheStackThatWasAskedForButAtLeastAMebibyte)
{
    pthread_attr_t attributes;
    std::size_t systemDefault = 0;
    pthread_getattr_default_np(&attributes);
    pthread_attr_getstacksize(&attributes, &systemDefault);
    pthread_attr_destroy(&attributes);

    constexpr std::size_t kMebibyte = 1'048'576;
    const std::pair<std::uint32_t, std::size_t> kSizes[] = {{0, systemDefault},
                                                            {4096, kMebibyte},
                                                            {kMebibyte, kMebibyte},
                                                            {8 * kMebibyte, 8 * kMebibyte}};
    for (const auto& [requested, expected] : kSizes)
        EXPECT_EQ(stackSizeWith(requested), expected) << requested;
}

TEST(Thread, IsNamedForTheKernelWithWholeCharactersOnly)
{
    const std::pair<const char*, const char*> kNames[] = {
        {"worker", "worker"},
        {"fifteen letters", "fifteen letters"},
        {"QtGLWindowUpdater", "QtGLWindowUpdat"},
        {"fourteen bytes\xC3\xA9", "fourteen bytes"},
        {"thirteen byte\xC3\xA9.", "thirteen byte\xC3\xA9"},
        {"twelve bytes\xF0\x9F\x8E\xAC", "twelve bytes"},
    };
    for (const auto& [name, expected] : kNames)
        EXPECT_EQ(kernelNameOf(name), expected);
}

TEST(Thread, WithoutANameKeepsItsMakers)
{
    char own[32];
    pthread_getname_np(pthread_self(), own, sizeof own);
    EXPECT_EQ(kernelNameOf(""), own);
}

TEST(Thread, WaitingGivesTrueOnlyIfTheBodyHadNotReturned)
{
    Gate gate;
    Body body = [&] { gate.wait(); };
    const auto thread = start(body);
    BackgroundThread waiter([&] { return thread->waitForCompletion(0); });
    waiter.waitUntilBlocked();
    gate.open();
    EXPECT_TRUE(waiter.result());
    EXPECT_FALSE(thread->waitForCompletion(0));
}

TEST(Thread, WaitingForABodyThatHasReturnedGivesFalse)
{
    Body body = [] {};
    std::atomic<bool> ended{false};
    body = [&] { ended = true; };
    const auto thread = start(body);
    ASSERT_TRUE(waitUntil([&] { return ended.load(); }));
    // The body is done; its thread clears the flag within moments and may be waited for until then.
    EXPECT_TRUE(waitUntil([&] { return !thread->waitForCompletion(0); }));
}

TEST(Thread, ThatExitsEarlyUnwindsAndIsJoined)
{
    bool unwound = false;
    Body body = [&] {
        struct Guard
        {
            bool& unwound;
            ~Guard() { unwound = true; }
        } const guard{unwound};
        OS()->threadMgr()->exitCurrentThread();
    };
    const auto thread = start(body);
    EXPECT_TRUE(thread->waitForCompletion(0));
    EXPECT_TRUE(unwound);
    EXPECT_TRUE(thread->waitForCompletion(0)) << "it never returned; there is nothing left to join";
}

TEST(Thread, MayBeReleasedWhileItsBodyRuns)
{
    Gate started;
    Gate released;
    std::atomic<pid_t> id{0};
    Body body = [&] {
        started.open();
        released.wait();
        id = gettid();
    };
    auto thread = start(body);
    started.wait();
    thread.reset();
    released.open();
    ASSERT_TRUE(waitUntil([&] { return id != 0; }));
    EXPECT_TRUE(endsByItself(id));
}

TEST(Thread, MayReleaseItself)
{
    Tq::Ptr<iThread> thread;
    Gate stored;
    std::atomic<pid_t> id{0};
    Body body = [&] {
        stored.wait();
        thread.reset();
        id = gettid();
    };
    thread = start(body);
    stored.open();
    ASSERT_TRUE(waitUntil([&] { return id != 0; }));
    EXPECT_TRUE(endsByItself(id));
    EXPECT_FALSE(thread);
}

TEST(Thread, WaitingForItselfIsRefusedAndLeavesItJoinable)
{
    Tq::Ptr<iThread> thread;
    Gate stored;
    Gate waited;
    bool result = false;
    Body body = [&] {
        stored.wait();
        result = thread->waitForCompletion(0);
        waited.open();
    };
    thread = start(body);
    stored.open();
    waited.wait();
    EXPECT_TRUE(result);
    thread->waitForCompletion(0);
}

TEST(Thread, ReportsTheNormalPriorityWhateverWasSet)
{
    Gate gate;
    Body body = [&] {
        gate.wait();
        EXPECT_EQ(sched_getscheduler(0), SCHED_OTHER);
    };
    const auto thread = start(body);
    for (int priority = iThread::ePriorityIdle; priority <= iThread::ePriorityTimeCritical;
         ++priority) {
        EXPECT_TRUE(thread->setPriority(static_cast<iThread::ePriority>(priority)));
        EXPECT_EQ(thread->getPriority(), 2);
    }
    gate.open();
    thread->waitForCompletion(0);
}

TEST(Thread, KeepsObjectsByName)
{
    Body body = [] {};
    auto thread = start(body);
    int alive = 0;
    EXPECT_FALSE(thread->getObject("a"));
    thread->setObject("a", Tq::Ptr<iObject>(new Counted(alive)));
    thread->setObject("b", Tq::Ptr<iObject>(new Counted(alive)));
    EXPECT_EQ(thread->getObject("a").useCount(), 2);
    thread->setObject("a", Tq::Ptr<iObject>(new Counted(alive)));
    EXPECT_EQ(alive, 2) << "the replaced one is released";
    thread->setObject("b", nullptr);
    EXPECT_FALSE(thread->getObject("b"));
    waitFor(*thread);
    thread.reset();
    EXPECT_EQ(alive, 0);
}

TEST(Thread, ReportsWhatIsNotSupported)
{
    bool ran = false;
    Body body = [&] { ran = true; };
    auto args = argsFor(body);
    args.createSuspended_ = true;
    Tq::Ptr<iThread> thread;
    EXPECT_EQ(outputOf([&] { thread = OS()->threadMgr()->createThread(args); }),
              "assertion failed args.createSuspended_ == false at OS/Mac/Thread line 18\n");
    EXPECT_EQ(outputOf([&] { thread->resume(); }),
              "assertion failed false at OS/Mac/Thread line 156\n");
    EXPECT_EQ(outputOf([&] { thread->suspend(); }),
              "assertion failed false at OS/Mac/Thread line 161\n");
    EXPECT_FALSE(thread->setAffinity(1));
    waitFor(*thread);
    EXPECT_TRUE(ran);
}
