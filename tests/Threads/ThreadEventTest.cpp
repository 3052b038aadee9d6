#include "OS/Mac/Threads/ThreadEvent.h"
#include "OS/Mac/Threads/ThreadEventSubscriber.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"
#include "support/Stopwatch.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

namespace {

constexpr unsigned int kPoll = 0;
constexpr unsigned int kLong = 30'000;

enum Reset : bool
{
    eAuto = false,
    eManual = true
};

Tq::Ptr<iThreadEvent> makeEvent(Reset reset, bool initialState = false)
{
    return OS()->threadMgr()->createEvent(reset, initialState, nullptr);
}

} // namespace

TEST(ThreadEvent, AutoResetSatisfiesOneWaitAndManualResetAll)
{
    const auto once = makeEvent(eAuto);
    EXPECT_EQ(once->wait(kPoll), iWaitable::eWaitTimedOut);
    once->set();
    EXPECT_TRUE(once->set()) << "setting twice counts once";
    EXPECT_EQ(once->wait(kPoll), iWaitable::eWaitSignalled);
    EXPECT_EQ(once->wait(kPoll), iWaitable::eWaitTimedOut);

    const auto lasting = makeEvent(eManual);
    lasting->set();
    for (const unsigned int timeoutMs : {kPoll, 1u, iWaitable::kNoTimeOut})
        EXPECT_EQ(lasting->wait(timeoutMs), iWaitable::eWaitSignalled);
    lasting->reset();
    EXPECT_EQ(lasting->wait(kPoll), iWaitable::eWaitTimedOut);
}

TEST(ThreadEvent, StartsInTheStateItWasGiven)
{
    for (const unsigned int timeoutMs : {kPoll, kLong, iWaitable::kNoTimeOut}) {
        const auto event = makeEvent(eAuto, true);
        EXPECT_EQ(event->wait(timeoutMs), iWaitable::eWaitSignalled);
        EXPECT_EQ(event->wait(kPoll), iWaitable::eWaitTimedOut) << "consumed";
    }
}

TEST(ThreadEvent, TimesOutAndNotEarly)
{
    const auto event = makeEvent(eAuto);
    const Stopwatch stopwatch;
    EXPECT_EQ(event->wait(50), iWaitable::eWaitTimedOut);
    EXPECT_GE(stopwatch.elapsedMs(), 49.9);
}

TEST(ThreadEvent, WakesABlockedWait)
{
    for (const Reset reset : {eAuto, eManual})
        for (const unsigned int timeoutMs : {kLong, iWaitable::kNoTimeOut}) {
            const auto event = makeEvent(reset);
            BackgroundThread waiter([&] { return event->wait(timeoutMs); });
            waiter.waitUntilBlocked();
            event->set();
            EXPECT_EQ(waiter.result(), iWaitable::eWaitSignalled);
            EXPECT_EQ(event->wait(kPoll),
                      reset == eManual ? iWaitable::eWaitSignalled : iWaitable::eWaitTimedOut);
        }
}

TEST(ThreadEvent, AnAutoResetSignalEndsExactlyOneOfTwoEndlessWaits)
{
    const auto event = makeEvent(eAuto);
    std::atomic<int> ended{0};
    BackgroundThreads waiters(2, [&] {
        event->wait(iWaitable::kNoTimeOut);
        ++ended;
    });
    waiters.waitUntilBlocked();
    event->set();
    EXPECT_TRUE(waitUntil([&] { return ended == 1; }));
    EXPECT_EQ(event->wait(kPoll), iWaitable::eWaitTimedOut) << "the signal is consumed";
    EXPECT_EQ(ended, 1);
    event->set();
    waiters.join();
}

TEST(ThreadEvent, ATimedWaitThatIsWokenForNothingFails)
{
    const auto event = makeEvent(eAuto);
    std::string results;
    const std::string printed = outputOf([&] {
        BackgroundThread first([&] { return event->wait(kLong); });
        BackgroundThread second([&] { return event->wait(kLong); });
        first.waitUntilBlocked();
        second.waitUntilBlocked();
        event->set();
        results = std::to_string(first.result()) + std::to_string(second.result());
    });
    EXPECT_TRUE(results == "32" || results == "23") << results;
    EXPECT_EQ(printed, "OS/Mac/ThreadEvent(212) : a pthread call failed (35)\n");
    event->set();
    EXPECT_EQ(event->wait(kPoll), iWaitable::eWaitSignalled) << "no lock stayed behind";
}

TEST(ThreadEvent, ManualResetWakesSixtyFourWaiters)
{
    const auto event = makeEvent(eManual);
    BackgroundThreads waiters(
        64, [&] { EXPECT_EQ(event->wait(iWaitable::kNoTimeOut), iWaitable::eWaitSignalled); });
    waiters.waitUntilBlocked();
    event->set();
    waiters.join();
    EXPECT_EQ(event->wait(1), iWaitable::eWaitSignalled) << "all registrations are gone";
}

TEST(ThreadEvent, The65thWaiterThrowsAndTheWaiterListStaysLocked)
{
    // In a process of its own, which then ends hard: the event and 64 threads are stuck.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const auto event = makeEvent(eManual);
            BackgroundThreads waiters(64, [&] { event->wait(iWaitable::kNoTimeOut); });
            waiters.waitUntilBlocked();
            try {
                event->wait(iWaitable::kNoTimeOut);
            } catch (const Tq::Exception::RuntimeError& error) {
                BackgroundThread setter([&] { return event->set(); });
                setter.waitUntilBlocked();
                std::fprintf(stderr, "%s|%s|%s|%d|%s", error.typeName(), error.message(),
                             error.file(), error.line(), setter.finished() ? "free" : "stuck");
                std::_Exit(0);
            }
            std::_Exit(1);
        },
        testing::ExitedWithCode(0),
        "RuntimeError\\|addSubscriber failed\\|OS/Mac/ThreadEvent\\|119\\|stuck");
}

TEST(ThreadEvent, MayBeDestroyedByTheThreadItWoke)
{
    for (int i = 0; i < 2'000; ++i) {
        auto event = makeEvent(eAuto);
        iThreadEvent* const borrowed = event.get();
        Tq::Ptr<iThreadEvent> forSetter = event;
        BackgroundThread setter([forSetter = std::move(forSetter), borrowed]() mutable {
            borrowed->set();
            forSetter.reset();
        });
        EXPECT_EQ(event->wait(iWaitable::kNoTimeOut), iWaitable::eWaitSignalled);
        event.reset();
    }
}

TEST(ThreadEvent, LosesNoSignalBetweenTwoThreads)
{
    constexpr int kRounds = 10'000;
    const auto ping = makeEvent(eAuto);
    const auto pong = makeEvent(eAuto);
    BackgroundThread partner([&] {
        for (int i = 0; i < kRounds; ++i) {
            ping->wait(iWaitable::kNoTimeOut);
            pong->set();
        }
    });
    for (int i = 0; i < kRounds; ++i) {
        ping->set();
        pong->wait(
            iWaitable::kNoTimeOut); // hangs, and fails by the suite's time limit, on a lost signal
    }
    partner.join();
}

TEST(SafeSubscriber, RecordsAtMost64EventsAndIgnoresNull)
{
    const ThreadEvent event(false, false, nullptr);
    ThreadEvent::Subscriber subscriber;
    ThreadEvent::SafeSubscriber registrations(&subscriber, nullptr);
    registrations.addSubscription(nullptr);
    for (int i = 0; i < 64; ++i)
        registrations.addSubscription(&event);
    try {
        registrations.addSubscription(&event);
        FAIL() << "must throw";
    } catch (const Tq::Exception::RuntimeError& error) {
        EXPECT_STREQ(error.message(), "addSubscription failed");
        EXPECT_EQ(error.line(), 74);
    }
}

TEST(FixedSizeVector, RemovesTheFirstEqualElementAndKeepsTheOrder)
{
    FixedSizeVector<int, 4> numbers;
    for (const int number : {1, 2, 3, 2})
        numbers.push_back(number);
    EXPECT_TRUE(numbers.full());
    numbers.remove(2);
    numbers.remove(7);
    EXPECT_EQ(std::vector<int>(numbers.begin(), numbers.end()), (std::vector<int>{1, 3, 2}));
    for (const int number : {1, 2, 3, 3})
        numbers.remove(number);
    EXPECT_EQ(numbers.size(), 0u);
}
