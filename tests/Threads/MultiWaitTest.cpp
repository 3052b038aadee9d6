#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"
#include "support/Stopwatch.h"

#include <OS.h>
#include <OS/Core/Exception.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Events = std::vector<Tq::Ptr<iThreadEvent>>;

constexpr unsigned int kPoll = 0;
constexpr unsigned int kLong = 30'000;
constexpr unsigned int kNone = iThreadManager::kNoPosition;
constexpr bool kAny = false, kAll = true;

struct Answer
{
    unsigned int result;
    unsigned int position;
    bool operator==(const Answer&) const = default;
};

void PrintTo(const Answer& answer, std::ostream* out)
{
    *out << answer.result << " at " << static_cast<int>(answer.position);
}

Answer wait(const Events& events, bool waitAll, unsigned int timeoutMs)
{
    const std::uint64_t answer = OS()->threadMgr()->waitForEvents(events, waitAll, timeoutMs);
    return {iThreadManager::waitResult(answer), iThreadManager::waitPosition(answer)};
}

constexpr Answer signalledAt(unsigned int position)
{
    return {iWaitable::eWaitSignalled, position};
}
constexpr Answer timedOutAt(unsigned int position)
{
    return {iWaitable::eWaitTimedOut, position};
}
constexpr Answer failedAt(unsigned int position)
{
    return {iWaitable::eWaitFailed, position};
}

// '1' is set, '0' is not; a capital letter 'S' or 'R' the same with manual reset.
Events makeEvents(const std::string& states)
{
    Events events;
    for (const char state : states)
        events.push_back(OS()->threadMgr()->createEvent(state == 'S' || state == 'R',
                                                        state == '1' || state == 'S', nullptr));
    return events;
}

std::string statesOf(const Events& events)
{
    std::string states;
    for (const auto& event : events) {
        const bool isSet = event->wait(kPoll) == iWaitable::eWaitSignalled;
        states += isSet ? '1' : '0';
    }
    return states;
}

class Foreign : public iThreadEvent
{
public:
    unsigned int wait(unsigned int) const override { return eWaitSignalled; }
    bool set() override { return true; }
    void reset() override {}
};

} // namespace

TEST(MultiWait, AnswersAtOnceAndConsumesWhatItReports)
{
    struct Row
    {
        const char* states;
        bool waitAll;
        unsigned int timeoutMs;
        Answer answer;
        const char* statesAfter;
    };
    constexpr Row kRows[] = {
        {"001010", kAny, kPoll, signalledAt(2), "000010"},
        {"001010", kAny, kLong, signalledAt(2), "000010"},
        {"001010", kAny, iWaitable::kNoTimeOut, signalledAt(2), "000010"},
        {"0S1", kAny, kPoll, signalledAt(1), "011"},
        {"000", kAny, kPoll, timedOutAt(kNone), "000"},
        {"", kAny, kPoll, timedOutAt(kNone), ""},
        {"", kAny, 1, timedOutAt(kNone), ""},
        {"1101", kAll, kPoll, timedOutAt(2), "1101"},
        {"0101", kAll, kPoll, timedOutAt(0), "0101"},
        {"111", kAll, kPoll, signalledAt(2), "000"},
        {"111", kAll, kLong, signalledAt(2), "000"},
        {"1S1", kAll, iWaitable::kNoTimeOut, signalledAt(2), "010"},
        {"1R1", kAll, kPoll, timedOutAt(1), "101"},
        {"", kAll, kPoll, signalledAt(kNone), ""},
        {"", kAll, kLong, signalledAt(kNone), ""},
    };
    for (const Row& row : kRows) {
        SCOPED_TRACE(std::string(row.states) + (row.waitAll ? " all " : " any ") +
                     std::to_string(row.timeoutMs));
        const Events events = makeEvents(row.states);
        EXPECT_EQ(wait(events, row.waitAll, row.timeoutMs), row.answer);
        EXPECT_EQ(statesOf(events), row.statesAfter);
    }
}

TEST(MultiWait, AnswersInTheCallersOrderWhateverTheAddresses)
{
    Events events = makeEvents("11011");
    std::sort(events.begin(), events.end());
    do {
        const auto unset = std::find_if(events.begin(), events.end(), [](const auto& event) {
            const bool isSet = event->wait(kPoll) == iWaitable::eWaitSignalled;
            if (isSet)
                event->set();
            return !isSet;
        });
        EXPECT_EQ(wait(events, kAll, kPoll),
                  timedOutAt(static_cast<unsigned int>(unset - events.begin())));
    } while (std::next_permutation(events.begin(), events.end()));
}

TEST(MultiWait, TimesOutWithoutAPositionAndNotEarly)
{
    for (const bool waitAll : {kAny, kAll}) {
        const Events events = makeEvents("00");
        const Stopwatch stopwatch;
        EXPECT_EQ(wait(events, waitAll, 50), timedOutAt(kNone));
        EXPECT_GE(stopwatch.elapsedMs(), 49.9);
    }
}

TEST(MultiWait, ATimeOutForAllNamesTheEventThatTheLastCheckMissed)
{
    const Events events = makeEvents("000");
    BackgroundThread waiter([&] { return wait(events, kAll, 300); });
    waiter.waitUntilBlocked();
    events[0]->set();
    EXPECT_EQ(waiter.result(), timedOutAt(1));
    EXPECT_EQ(statesOf(events), "100") << "nothing is consumed";
}

TEST(MultiWait, ABlockedWaitForAnyIsWokenByEachPosition)
{
    for (unsigned int i = 0; i < 64; i += 21)
        for (const unsigned int timeoutMs : {kLong, iWaitable::kNoTimeOut}) {
            const Events events = makeEvents(std::string(64, '0'));
            BackgroundThread waiter([&] { return wait(events, kAny, timeoutMs); });
            waiter.waitUntilBlocked();
            events[i]->set();
            EXPECT_EQ(waiter.result(), signalledAt(i));
            EXPECT_EQ(statesOf(events), std::string(64, '0'));
        }
}

TEST(MultiWait, ABlockedWaitForAllEndsWithTheLastEventAndLeavesTheOthersAloneBefore)
{
    const Events events = makeEvents("000");
    BackgroundThread waiter([&] { return wait(events, kAll, kLong); });
    waiter.waitUntilBlocked();
    events[2]->set();
    events[0]->set();
    waiter.waitUntilBlocked();
    EXPECT_FALSE(waiter.finished());
    EXPECT_EQ(wait({events[0], events[2]}, kAll, kPoll), signalledAt(1))
        << "still there for others";
    events[0]->set();
    events[2]->set();
    events[1]->set();
    EXPECT_EQ(waiter.result(), signalledAt(2));
    EXPECT_EQ(statesOf(events), "000");
}

TEST(MultiWait, WaitsForAllInCrossedOrdersDoNotLockEachOtherOut)
{
    constexpr int kRounds = 20'000;
    const Events forwards = makeEvents("00");
    const Events backwards{forwards[1], forwards[0]};
    std::atomic<int> taken{0};
    std::atomic<bool> done{false};
    const auto takeWhileRunning = [&](const Events& events) {
        while (!done)
            taken += wait(events, kAll, kPoll).result == iWaitable::eWaitSignalled;
    };
    BackgroundThread first([&] { takeWhileRunning(forwards); });
    BackgroundThread second([&] { takeWhileRunning(backwards); });
    for (int i = 0; i < kRounds; ++i) {
        forwards[0]->set();
        forwards[1]->set();
    }
    EXPECT_TRUE(waitUntil([&] { return taken > 0; }));
    done = true;
    first.join(); // hangs, and fails by the suite's time limit, when they do
    second.join();
}

TEST(MultiWait, EachPairOfSignalsSatisfiesOneBlockedWaitForAll)
{
    constexpr int kRounds = 2'000;
    const Events forwards = makeEvents("00");
    const Events backwards{forwards[1], forwards[0]};
    const auto next = OS()->threadMgr()->createSemaphore(0, 0);
    std::atomic<int> remaining{kRounds};
    const auto take = [&](const Events& events) {
        while (remaining > 0) {
            if (wait(events, kAll, 20).result != iWaitable::eWaitSignalled)
                continue;
            --remaining;
            next->release();
        }
    };
    BackgroundThread first([&] { take(forwards); });
    BackgroundThread second([&] { take(backwards); });
    for (std::size_t i = 0; i < kRounds; ++i) {
        forwards[i % 2]->set();
        forwards[1 - i % 2]->set();
        ASSERT_EQ(next->wait(kLong), iWaitable::eWaitSignalled) << "round " << i;
    }
    first.join();
    second.join();
    EXPECT_EQ(remaining, 0);
}

TEST(MultiWait, AnAnyWaitAndASingleWaitShareNoSignal)
{
    constexpr int kRounds = 2'000;
    const Events events = makeEvents("00");
    const auto next = OS()->threadMgr()->createSemaphore(0, 0);
    std::atomic<int> taken{0};
    const auto count = [&](unsigned int result) {
        if (result != iWaitable::eWaitSignalled)
            return;
        ++taken;
        next->release();
    };
    const std::string printed = outputOf([&] {
        BackgroundThread any([&] {
            while (taken < kRounds)
                count(wait(events, kAny, 20).result);
        });
        BackgroundThread single([&] {
            while (taken < kRounds)
                count(events[1]->wait(20));
        });
        for (int i = 0; i < kRounds; ++i) {
            events[1]->set();
            EXPECT_EQ(next->wait(kLong), iWaitable::eWaitSignalled);
        }
    });
    EXPECT_EQ(taken, kRounds);
    EXPECT_EQ(next->wait(kPoll), iWaitable::eWaitFailed) << "a signal was taken twice";
    EXPECT_EQ(statesOf(events), "00");
}

TEST(MultiWait, AnEventListedTwiceFailsAtItsSecondPlace)
{
    const Events two = makeEvents("11");
    EXPECT_EQ(wait({two[0], two[1], two[0]}, kAll, kPoll), failedAt(2));
    EXPECT_EQ(wait({two[0], two[0], two[1]}, kAll, kLong), failedAt(1));
    EXPECT_EQ(statesOf(two), "11") << "nothing consumed, nothing left locked";
    EXPECT_EQ(wait({two[0], two[1], two[0]}, kAll, kPoll), timedOutAt(0)) << "not set comes first";
    two[1]->set();
    EXPECT_EQ(wait({two[0], two[0], two[1]}, kAny, kLong), signalledAt(2));
}

TEST(MultiWait, RefusesMoreThan64EventsBeforeAnythingIsRegistered)
{
    Events events = makeEvents(std::string(65, '1'));
    for (const bool waitAll : {kAny, kAll})
        try {
            wait(events, waitAll, 1);
            FAIL() << "must throw";
        } catch (const Tq::Exception::RuntimeError& error) {
            EXPECT_STREQ(error.message(), "addSubscription failed");
            EXPECT_STREQ(error.file(), "OS/Mac/ThreadEvent");
            EXPECT_EQ(error.line(), 74);
        }
    for (const auto& event : events)
        event->set(); // would reach a waiter that is gone
}

#ifndef OS_TESTS_UNDER_TSAN // which cannot follow more than 64 locks held at once
TEST(MultiWait, AskingWithoutBlockingHasNoLimit)
{
    const Events events = makeEvents(std::string(300, '1'));
    EXPECT_EQ(wait(events, kAll, kPoll), signalledAt(299));
    events.back()->set();
    EXPECT_EQ(wait(events, kAny, kPoll), signalledAt(299));
    EXPECT_EQ(statesOf(events), std::string(300, '0'));
}
#endif

TEST(MultiWait, TakesBackItsRegistrationsWhenAnEventIsFull)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            const Events events = makeEvents("R0");
            BackgroundThreads waiters(64, [&] { events[0]->wait(iWaitable::kNoTimeOut); });
            waiters.waitUntilBlocked();
            try {
                wait({events[1], events[0]}, kAny, kLong);
            } catch (const Tq::Exception::RuntimeError& error) {
                events[1]->set(); // would reach a waiter that is gone
                std::fprintf(stderr, "%s, %u", error.message(), events[1]->wait(1));
                std::_Exit(0);
            }
            std::_Exit(1);
        },
        testing::ExitedWithCode(0), "addSubscriber failed, 3");
}

TEST(MultiWait, RefusesWhatIsNoEventOfTheLibrarys)
{
    const Events good = makeEvents("01");
    const Tq::Ptr<iThreadEvent> foreign(new Foreign);
    const char* kLine = "assertion failed threadEvent != NULL at OS/Mac/ThreadEvent line 368\n";
    const auto refused = [](const Events& events, bool waitAll, unsigned int timeoutMs) {
        return [=] { EXPECT_EQ(wait(events, waitAll, timeoutMs), failedAt(1)); };
    };
    for (const auto& bad : {foreign, Tq::Ptr<iThreadEvent>()})
        for (const bool waitAll : {kAny, kAll})
            for (const unsigned int timeoutMs : {kPoll, 1u})
                EXPECT_EQ(outputOf(refused({good[0], bad, good[1]}, waitAll, timeoutMs)), kLine);
    EXPECT_EQ(statesOf(good), "01");
}
