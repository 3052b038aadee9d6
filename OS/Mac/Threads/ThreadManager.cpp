#include "OS/Mac/Threads/ThreadManager.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Threads/CriticalSection.h"
#include "OS/Mac/Threads/Mutex.h"
#include "OS/Mac/Threads/Semaphore.h"
#include "OS/Mac/Threads/Thread.h"
#include "OS/Mac/Threads/ThreadEvent.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>

#include <unistd.h>

namespace {

constexpr long kNanosecondsPerSecond = 1'000'000'000;

Tq::Ptr<iCriticalSection> makeRegistryLock()
{
    auto lock = OS()->threadMgr()->createCriticalSection(0);
    OSInternal::setLockRank(*lock, OSInternal::LockRank::eNamedEvent);
    return lock;
}

} // namespace

Tq::Ptr<iCriticalSection> ThreadManager::createCriticalSection(unsigned int spinCount) const
{
    return Tq::Ptr<iCriticalSection>(new OSInternal::CriticalSection(spinCount));
}

Tq::Ptr<iSemaphore> ThreadManager::createSemaphore(unsigned int initialCount,
                                                   unsigned int maxCount) const
{
    return Tq::Ptr<iSemaphore>(new Semaphore(initialCount, maxCount));
}

Tq::Ptr<iThreadEvent> ThreadManager::createEvent(bool manualReset, bool initialState,
                                                 const char* name) const
{
    if (!name)
        return Tq::Ptr<iThreadEvent>(new ThreadEvent(manualReset, initialState, nullptr));

    const CriticalSectionLock lock(getLock());
    const LightweightString<char> key(name);
    const auto found = namedEvents_.find(key);
    if (found != namedEvents_.end())
        return found->second;
    const Tq::Ptr<iThreadEvent> event(new ThreadEvent(manualReset, initialState, name));
    namedEvents_.emplace(key, event);
    return event;
}

Tq::Ptr<iMutex> ThreadManager::createMutex(const char* name) const
{
    return Tq::Ptr<iMutex>(new Mutex(name));
}

Tq::Ptr<iThread> ThreadManager::createThread(const iThread::InitArgs& args) const
{
    return Tq::Ptr<iThread>(new Thread(args));
}

std::uint64_t ThreadManager::waitForEvents(const std::vector<Tq::Ptr<iThreadEvent>>& events,
                                           bool waitAll, unsigned int timeoutMs) const
{
    return ThreadEvent::waitForEvents(events, waitAll, timeoutMs);
}

iThread::eExecRC ThreadManager::protectedExecute(iThread::eExecRC (*function)(void*),
                                                 void* argument,
                                                 void (*handler)(const iThread::Exception&)) const
{
    return Thread::protectedExecute(function, argument, handler);
}

Tq::Ptr<iMutex> ThreadManager::openMutex(const char* /*name*/) const
{
    OSInternal::reportAssertion("false", "OS/Mac/ThreadManager line 114");
    return {};
}

std::uint32_t ThreadManager::getCurrentThreadID() const
{
    return static_cast<std::uint32_t>(gettid());
}

void ThreadManager::exitCurrentThread() const
{
    Thread::exitCurrentThread();
}

void ThreadManager::sleep(unsigned int timeMs) const
{
    timespec interval;
    MsecToTimespec(interval, timeMs);
    nanosleep(&interval, nullptr);
}

void ThreadManager::MsecToTimespec(timespec& interval, unsigned int timeMs)
{
    interval.tv_sec = static_cast<time_t>(timeMs / 1000);
    interval.tv_nsec = static_cast<long>(timeMs % 1000) * 1'000'000;
}

void ThreadManager::MsecToTimespecAbs(timespec& deadline, unsigned int timeMs)
{
    timespec interval;
    MsecToTimespec(interval, timeMs);
    clock_gettime(CLOCK_REALTIME, &deadline);
    deadline.tv_sec += interval.tv_sec;
    deadline.tv_nsec += interval.tv_nsec;
    if (deadline.tv_nsec >= kNanosecondsPerSecond) {
        deadline.tv_nsec -= kNanosecondsPerSecond;
        ++deadline.tv_sec;
    }
}

Tq::Ptr<iCriticalSection> ThreadManager::getLock()
{
    static const Tq::Ptr<iCriticalSection> lock = makeRegistryLock();
    return lock;
}
