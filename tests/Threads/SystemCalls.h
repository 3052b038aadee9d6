#pragma once

#include <ctime>
#include <deque>
#include <functional>
#include <sys/time.h>
#include <vector>

/// The system calls of the library under the tests' control. The linker sends the calls that the
/// static library makes through here (see tests/CMakeLists.txt); everything acts on the calling
/// thread only.

/// Makes one coming call fail, for the life of a scope.
///
/// An unlock or destroy is carried out and then reported as failed, so that nothing stays locked;
/// any other call is not made at all.
class FailingCall
{
public:
    /// @param name of the function, such as "pthread_mutex_lock"
    /// @param skip how many calls of it succeed first
    FailingCall(const char* name, int error, int skip = 0);
    ~FailingCall();
    FailingCall(const FailingCall&) = delete;
    FailingCall& operator=(const FailingCall&) = delete;

    bool happened() const;
};

/// A clock that stands still and pauses that take no time, for the life of a scope.
class FakeTime
{
public:
    FakeTime();
    ~FakeTime();
    FakeTime(const FakeTime&) = delete;
    FakeTime& operator=(const FakeTime&) = delete;

    struct ClockRead
    {
        int result;
        long microseconds;
    };

    timespec now{};                        ///< what clock_gettime says
    std::deque<ClockRead> clockReads;      ///< what gettimeofday says, in turn; then {0, 0}
    std::deque<int> pauseResults;          ///< what nanosleep returns, in turn; then 0
    std::function<void()> onPause = [] {}; ///< called by every nanosleep
    std::vector<timespec> pauses;          ///< what nanosleep was asked for
    int zonesAsked = 0;                    ///< calls of gettimeofday that passed a time zone
};
