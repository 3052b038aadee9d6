#include "Threads/SystemCalls.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

/// Every published line of a failing call that can be provoked, with what the operation answers
/// then.

namespace {

using Events = std::vector<Tq::Ptr<iThreadEvent>>;

constexpr int kError = EINVAL;

iThreadManager& manager()
{
    return *OS()->threadMgr();
}

Tq::Ptr<iThreadEvent> makeEvent(bool initialState)
{
    return manager().createEvent(false, initialState, nullptr);
}

std::string answer(std::uint64_t result)
{
    const auto position = static_cast<int>(iThreadManager::waitPosition(result));
    return std::to_string(iThreadManager::waitResult(result)) + " at " + std::to_string(position);
}

struct Row
{
    const char* name;
    std::function<std::string()> operation;
    const char* failingCall;
    int skip;
    const char* expected; // the lines printed, then the answer
};

// What the operation prints and answers when the row's call fails.
std::string transcript(const Row& row)
{
    std::string ending;
    bool happened = false;
    std::string printed = outputOf([&] {
        const FailingCall failing(row.failingCall, kError, row.skip);
        try {
            ending = row.operation();
        } catch (const std::runtime_error& error) {
            ending = std::string("throws ") + error.what();
        }
        happened = failing.happened();
    });
    EXPECT_TRUE(happened) << "the call was never made";
    return printed + ending;
}

void check(const std::vector<Row>& rows)
{
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(transcript(row), row.expected);
    }
}

#define EVENT(line) "OS/Mac/ThreadEvent(" #line ") : a pthread call failed (22)\n"
// The unlock that follows a failed lock: the thread does not own the mutex.
#define EVENT_NOT_OWNED(line) "OS/Mac/ThreadEvent(" #line ") : a pthread call failed (1)\n"
#define MUTEX(line) "OS/Mac/Mutex(" #line ") : a pthread call failed (22)\n"

} // namespace

TEST(FailureLines, OfACriticalSection)
{
    const auto section = manager().createCriticalSection(0);
    const auto lock = [&] {
        section->lock();
        return std::string("unlocked");
    };
    const auto lockAndUnlock = [&] {
        section->lock();
        section->unlock();
        return std::string("done");
    };
    const auto tryLock = [&] { return std::string(section->lockIfNotLocked() ? "true" : "false"); };
    check({
        {"lock", lock, "pthread_mutex_lock", 0,
         "CriticalSection::lock() : pthread_mutex_lock failed (22)\n"
         "assertion failed rc == PTHREAD_SUCCESS at OS/Mac/CriticalSection line 44\nunlocked"},
        {"unlock", lockAndUnlock, "pthread_mutex_unlock", 0,
         "CriticalSection::unlock() : pthread_mutex_unlock failed (22)\n"
         "assertion failed rc == PTHREAD_SUCCESS at OS/Mac/CriticalSection line 55\ndone"},
        {"try", tryLock, "pthread_mutex_trylock", 0,
         "CriticalSection::unlock() : pthread_mutex_trylock failed (22)\n"
         "assertion failed rc == PTHREAD_SUCCESS at OS/Mac/CriticalSection line 80\nfalse"},
    });
}

TEST(FailureLines, OfAMutex)
{
    const auto make = [] {
        manager().createMutex(nullptr);
        return std::string("made");
    };
    const auto mutex = manager().createMutex("named");
    const auto wait = [&](unsigned int timeoutMs) {
        return [&mutex, timeoutMs] { return std::to_string(mutex->wait(timeoutMs)); };
    };
    const auto release = [&] {
        mutex->wait(iWaitable::kNoTimeOut);
        mutex->release();
        return std::string("released");
    };
    check({
        {"attributes", make, "pthread_mutexattr_init", 0,
         MUTEX(44) "throws pthread_mutexattr_init failed"},
        {"type", make, "pthread_mutexattr_settype", 0,
         MUTEX(45) "throws pthread_mutexattr_settype failed"},
        {"mutex", make, "pthread_mutex_init", 0, MUTEX(46) "throws pthread_mutex_init failed."},
        {"attributes' end", make, "pthread_mutexattr_destroy", 0,
         MUTEX(47) "throws pthread_mutexattr_destroy failed."},
        {"end", make, "pthread_mutex_destroy", 0, MUTEX(52) "made"},
        {"wait", wait(iWaitable::kNoTimeOut), "pthread_mutex_lock", 0, MUTEX(104) "2"},
        {"timed wait", wait(10), "pthread_mutex_trylock", 0, MUTEX(120) "2"},
        {"release", release, "pthread_mutex_unlock", 0,
         MUTEX(128) "throws pthread_mutex_unlock failed."},
    });
}

TEST(FailureLines, OfAnEventThatIsMadeOrDestroyed)
{
    const auto make = [] {
        makeEvent(false);
        return std::string("made");
    };
    check({
        {"attributes", make, "pthread_mutexattr_init", 0,
         EVENT(94) "throws pthread_mutexattr_init failed"},
        {"type", make, "pthread_mutexattr_settype", 0,
         EVENT(95) "throws pthread_mutexattr_settype failed"},
        {"list lock", make, "pthread_mutex_init", 0, EVENT(97) "throws pthread_mutex_init failed."},
        {"state lock", make, "pthread_mutex_init", 1,
         EVENT(98) "throws pthread_mutex_init failed."},
        {"attributes' end", make, "pthread_mutexattr_destroy", 0,
         EVENT(99) "throws pthread_mutexattr_destroy mtxAttr failed."},
        {"end: lock", make, "pthread_mutex_lock", 0, EVENT(106) EVENT_NOT_OWNED(107) "made"},
        {"end: unlock", make, "pthread_mutex_unlock", 0, EVENT(107) "made"},
        {"end: list lock", make, "pthread_mutex_destroy", 0, EVENT(108) "made"},
    });
}

TEST(FailureLines, OfSettingAndAskingAnEvent)
{
    const auto event = makeEvent(false);
    const auto set = [&] {
        const bool result = event->set();
        event->reset();
        return std::string(result ? "true" : "false");
    };
    const auto reset = [&] {
        event->reset();
        return std::string("reset");
    };
    const auto poll = [](bool initialState) {
        return [initialState] { return std::to_string(makeEvent(initialState)->wait(0)); };
    };
    check({
        {"set: state", set, "pthread_mutex_lock", 0, EVENT(270) EVENT_NOT_OWNED(274) "true"},
        {"set: state's unlock", set, "pthread_mutex_unlock", 0, EVENT(274) "true"},
        {"set: list", set, "pthread_mutex_lock", 1, EVENT(276) EVENT_NOT_OWNED(321) "true"},
        {"set: list's unlock", set, "pthread_mutex_unlock", 1, EVENT(321) "true"},
        {"reset", reset, "pthread_mutex_lock", 0, EVENT(328) EVENT_NOT_OWNED(330) "reset"},
        {"reset: unlock", reset, "pthread_mutex_unlock", 0, EVENT(330) "reset"},
        {"poll", poll(true), "pthread_mutex_lock", 0, EVENT(138) "2"},
        {"poll: set", poll(true), "pthread_mutex_unlock", 0, EVENT(145) "2"},
        {"poll: not set", poll(false), "pthread_mutex_unlock", 0, EVENT(151) "2"},
    });
}

TEST(FailureLines, OfAWaitThatIsNotWoken)
{
    const auto wait = [](bool initialState, unsigned int timeoutMs) {
        return [=] { return std::to_string(makeEvent(initialState)->wait(timeoutMs)); };
    };
    const auto timed = wait(false, 1);
    check({
        {"subscriber: attributes", timed, "pthread_mutexattr_init", 1,
         EVENT(44) "throws pthread_mutexattr_init failed"},
        {"subscriber: type", timed, "pthread_mutexattr_settype", 1,
         EVENT(45) "throws pthread_mutexattr_settype failed"},
        {"subscriber: mutex", timed, "pthread_mutex_init", 2,
         EVENT(47) "throws pthread_mutex_init failed."},
        {"subscriber: condition", timed, "pthread_cond_init", 0,
         EVENT(49) "throws pthread_cond_int failed."},
        {"subscriber: attributes' end", timed, "pthread_mutexattr_destroy", 1,
         EVENT(51) "throws pthread_mutexattr_destroy mtxAttr failed."},
        {"subscriber: condition's end", timed, "pthread_cond_destroy", 0, EVENT(56) "1"},
        {"subscriber: mutex's end", timed, "pthread_mutex_destroy", 0, EVENT(57) "1"},
        {"registration", timed, "pthread_mutex_lock", 0, EVENT(116) EVENT_NOT_OWNED(121) "1"},
        {"registration: unlock", timed, "pthread_mutex_unlock", 0, EVENT(121) "1"},
        {"removal", timed, "pthread_mutex_lock", 3, EVENT(126) EVENT_NOT_OWNED(130) "1"},
        {"removal: unlock", timed, "pthread_mutex_unlock", 3, EVENT(130) "1"},
        {"timed: state", timed, "pthread_mutex_lock", 1, EVENT(201) "2"},
        {"timed: subscriber", timed, "pthread_mutex_lock", 2, EVENT(212) "2"},
        {"timed: state's unlock", timed, "pthread_mutex_unlock", 1, EVENT(217) "2"},
        {"timed: subscriber's unlock", timed, "pthread_mutex_unlock", 2, EVENT(224) "1"},
        {"timed: condition", timed, "pthread_cond_timedwait", 0, EVENT(232) "2"},
        {"timed, set: state's unlock", wait(true, 1), "pthread_mutex_unlock", 1,
         EVENT(259) EVENT(261) "2"},
        {"endless: state", wait(true, iWaitable::kNoTimeOut), "pthread_mutex_lock", 1,
         EVENT(166) "2"},
    });
}

TEST(FailureLines, OfAWaitThatIsWoken)
{
    const auto wokenWait = [] {
        const auto event = makeEvent(false);
        const auto waiter = gettid();
        const BackgroundThread setter([&] {
            waitUntilAsleep(waiter);
            event->set();
        });
        return std::to_string(event->wait(30'000));
    };
    check({
        {"state's unlock", wokenWait, "pthread_mutex_unlock", 2, EVENT(259) EVENT(261) "2"},
        {"subscriber's unlock", wokenWait, "pthread_mutex_unlock", 3, EVENT(260) EVENT(261) "2"},
    });
}

TEST(FailureLines, OfASetWithAWaiter)
{
    const auto setWithWaiter = [](bool manualReset) {
        return [manualReset] {
            const auto event = manager().createEvent(manualReset, false, nullptr);
            BackgroundThread waiter([&] { return event->wait(iWaitable::kNoTimeOut); });
            waiter.waitUntilBlocked();
            const bool result = event->set();
            event->set(); // for the waiter that the failing call left asleep
            return std::to_string(result) + " " + std::to_string(waiter.result());
        };
    };
    check({
        {"subscriber", setWithWaiter(true), "pthread_mutex_lock", 2, EVENT(288) "1 3"},
        {"broadcast", setWithWaiter(true), "pthread_cond_broadcast", 0, EVENT(306) "1 3"},
        {"signal", setWithWaiter(false), "pthread_cond_signal", 0, EVENT(307) "1 3"},
        {"subscriber's unlock", setWithWaiter(true), "pthread_mutex_unlock", 1, EVENT(316) "1 3"},
    });
}

TEST(FailureLines, OfAWaitForSeveralEvents)
{
    const auto wait = [](std::vector<bool> states, bool waitAll, unsigned int timeoutMs) {
        return [=] {
            Events events;
            for (const bool state : states)
                events.push_back(makeEvent(state));
            return answer(manager().waitForEvents(events, waitAll, timeoutMs));
        };
    };
    constexpr bool kAny = false, kAll = true;
    check({
        {"any, poll: unlock of the set one", wait({true}, kAny, 0), "pthread_mutex_unlock", 0,
         EVENT(612) "2 at 0"},
        {"any, poll: unlock of another", wait({false, true}, kAny, 0), "pthread_mutex_unlock", 0,
         EVENT(628) "3 at 1"},
        {"all, poll: unlock of the last", wait({true, true}, kAll, 0), "pthread_mutex_unlock", 0,
         EVENT(670) "2 at 1"},
        {"all, poll: unlock after failure", wait({true, false}, kAll, 0), "pthread_mutex_unlock", 0,
         EVENT(690) "1 at 1"},
        {"any: subscriber", wait({true}, kAny, 1), "pthread_mutex_lock", 1, EVENT(396) "2 at -1"},
        {"any: state's unlock", wait({true}, kAny, 1), "pthread_mutex_unlock", 1,
         EVENT(432) "2 at 0"},
        {"any: subscriber's unlock", wait({true}, kAny, 1), "pthread_mutex_unlock", 2,
         EVENT(433) "2 at 0"},
        {"any: unlock after time-out", wait({false}, kAny, 1), "pthread_mutex_unlock", 1,
         EVENT(489) "1 at -1"},
        {"all: subscriber's unlock", wait({true, true}, kAll, 1), "pthread_mutex_unlock", 2,
         EVENT(507) "2 at -1"},
        {"any: condition", wait({false}, kAny, 1), "pthread_cond_timedwait", 0, "2 at -1"},
    });
}

TEST(FailureLines, LeaveNothingLockedAmongSeveralEvents)
{
    const Events events{makeEvent(true), makeEvent(true), makeEvent(true)};
    {
        const FailingCall failing("pthread_mutex_lock", kError, 1);
        outputOf([&] {
            const auto result = manager().waitForEvents(events, true, 0);
            EXPECT_EQ(iThreadManager::waitResult(result), iWaitable::eWaitFailed);
        });
    }
    EXPECT_EQ(answer(manager().waitForEvents(events, true, 0)), "3 at 2");
}

TEST(FailureLines, OfAThread)
{
    const auto make = [] {
        iThread::InitArgs args;
        args.func_ = [](void*) { return iThread::eExecSucceeded; };
        const auto thread = manager().createThread(args);
        EXPECT_FALSE(thread->setPriority(iThread::ePriorityHigh));
        return std::string(thread->waitForCompletion(iWaitable::kNoTimeOut) ? "waited" : "ended");
    };
    const Row row{"create", make, "pthread_create", 0,
                  "assertion failed rc == 0 at OS/Mac/Thread line 44\nwaited"};
    check({row});
}
