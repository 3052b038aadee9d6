#include "OS/Mac/Threads/Mutex.h"
#include "Threads/SystemCalls.h"
#include "support/BackgroundThread.h"
#include "support/OutputCapture.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <stdexcept>

namespace {

class OpenMutex : public Mutex
{
public:
    OpenMutex() : Mutex(nullptr) {}
    using Mutex::pthread_mutex_timedlock;
};

Tq::Ptr<iMutex> makeMutex()
{
    return OS()->threadMgr()->createMutex("ignored");
}

// Runs code while another thread owns the mutex.
template <class Code>
void whileOwnedElsewhere(const iMutex& mutex, Code code)
{
    Gate taken;
    Gate done;
    BackgroundThread owner([&] {
        mutex.wait(iWaitable::kNoTimeOut);
        taken.open();
        done.wait();
        mutex.release();
    });
    taken.wait();
    code();
    done.open();
}

} // namespace

TEST(Mutex, IsRecursiveAndKeepsOthersOutUntilTheLastRelease)
{
    const auto mutex = makeMutex();
    EXPECT_EQ(mutex->wait(iWaitable::kNoTimeOut), iWaitable::eWaitSignalled);
    EXPECT_EQ(mutex->wait(iWaitable::kNoTimeOut), iWaitable::eWaitSignalled);
    EXPECT_EQ(mutex->wait(0), iWaitable::eWaitSignalled);

    std::atomic<bool> released{false};
    BackgroundThread other([&] {
        mutex->wait(iWaitable::kNoTimeOut);
        EXPECT_TRUE(released.load());
        mutex->release();
    });
    mutex->release();
    mutex->release();
    other.waitUntilBlocked();
    released = true;
    mutex->release();
    other.join();
}

#ifndef OS_TESTS_UNDER_TSAN // which reports the misuse itself
TEST(Mutex, RefusesAReleaseByAThreadThatDoesNotOwnIt)
{
    const auto mutex = makeMutex();
    std::string thrown;
    EXPECT_EQ(outputOf([&] {
                  try {
                      mutex->release();
                  } catch (const std::runtime_error& error) {
                      thrown = error.what();
                  }
              }),
              "OS/Mac/Mutex(128) : a pthread call failed (1)\n");
    EXPECT_EQ(thrown, "pthread_mutex_unlock failed.");
}
#endif

TEST(Mutex, AContendedTimedWaitPausesAndSucceedsWithoutOwnership)
{
    const auto mutex = makeMutex();
    whileOwnedElsewhere(*mutex, [&] {
        FakeTime time;
        time.pauseResults = {-1, -1, 0};
        EXPECT_EQ(mutex->wait(100), iWaitable::eWaitSignalled);
        ASSERT_EQ(time.pauses.size(), 3u);
        EXPECT_EQ(time.pauses[0].tv_sec, 10'000'000);
        EXPECT_EQ(time.pauses[0].tv_nsec, 0);
        EXPECT_EQ(time.pauses[2].tv_sec, 10'000'000 - 2)
            << "an interrupted pause goes on with the rest";
        EXPECT_EQ(time.zonesAsked, 2);
    });
}

TEST(Mutex, PollsAgainWhileTheClockCannotBeRead)
{
    const auto mutex = makeMutex();
    whileOwnedElsewhere(*mutex, [&] {
        FakeTime time;
        time.now = {5, 0};
        time.clockReads = {{0, 10}, {-1, 3'000}, {-1, 9'999}, {-1, 10'010}};
        EXPECT_EQ(mutex->wait(10), iWaitable::eWaitFailed);
        EXPECT_EQ(time.pauses.size(), 3u)
            << "10 ms after the start time's microseconds it gives up";
    });
}

TEST(Mutex, TakesAMutexThatBecomesFreeWhileTheClockCannotBeRead)
{
    const OpenMutex mutex;
    Gate freed;
    Gate mayGo;
    Gate taken;
    BackgroundThread owner([&] {
        mutex.wait(iWaitable::kNoTimeOut);
        taken.open();
        mayGo.wait();
        mutex.release();
        freed.open();
    });
    taken.wait();

    FakeTime time;
    time.clockReads = {{0, 0}, {-1, 0}};
    time.onPause = [&] {
        mayGo.open();
        freed.wait();
    };
    EXPECT_EQ(mutex.wait(10), iWaitable::eWaitSignalled);
    EXPECT_EQ(time.pauses.size(), 1u);
    mutex.release();
}

TEST(Mutex, TheTimedLockWithoutADeadlineIsAPlainLock)
{
    const OpenMutex mutex;
    pthread_mutex_t other = PTHREAD_MUTEX_INITIALIZER;
    EXPECT_EQ(mutex.pthread_mutex_timedlock(&other, nullptr), 0);
    EXPECT_EQ(pthread_mutex_trylock(&other), EBUSY);
    pthread_mutex_unlock(&other);
}

TEST(Mutex, ATimeOutIsReportedOnlyWhenTheSystemSaysSo)
{
    const auto mutex = makeMutex();
    const FailingCall timesOut("pthread_mutex_trylock", ETIMEDOUT);
    EXPECT_EQ(mutex->wait(100), iWaitable::eWaitTimedOut);
}
