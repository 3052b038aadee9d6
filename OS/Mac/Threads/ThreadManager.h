#pragma once

#include <OS/Threads/iThreadManager.h>

#include <ctime>
#include <map>

/// iThreadManager on POSIX threads. Its one state is the registry of named events, guarded by
/// getLock().
class ThreadManager final : public iThreadManager
{
public:
    Tq::Ptr<iCriticalSection> createCriticalSection(unsigned int spinCount) const override;
    Tq::Ptr<iSemaphore> createSemaphore(unsigned int initialCount,
                                        unsigned int maxCount) const override;
    Tq::Ptr<iThreadEvent> createEvent(bool manualReset, bool initialState,
                                      const char* name) const override;
    Tq::Ptr<iMutex> createMutex(const char* name) const override;
    Tq::Ptr<iThread> createThread(const iThread::InitArgs& args) const override;
    std::uint64_t waitForEvents(const std::vector<Tq::Ptr<iThreadEvent>>& events, bool waitAll,
                                unsigned int timeoutMs) const override;
    iThread::eExecRC protectedExecute(iThread::eExecRC (*function)(void*), void* argument,
                                      void (*handler)(const iThread::Exception&)) const override;
    Tq::Ptr<iMutex> openMutex(const char* name) const override;
    std::uint32_t getCurrentThreadID() const override;
    [[noreturn]] void exitCurrentThread() const override;
    void sleep(unsigned int timeMs) const override;

    /// The interval as seconds and nanoseconds.
    static void MsecToTimespec(timespec& interval, unsigned int timeMs);
    /// The moment that lies timeMs ahead on the calendar clock, as the timed waits take it.
    static void MsecToTimespecAbs(timespec& deadline, unsigned int timeMs);
    /// The process's lock of the registry, made at first use and released at exit.
    static Tq::Ptr<iCriticalSection> getLock();

private:
    mutable std::map<LightweightString<char>, Tq::Ptr<iThreadEvent>> namedEvents_;
};
