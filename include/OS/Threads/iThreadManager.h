#pragma once

#include <OS/Threads/iCriticalSection.h>
#include <OS/Threads/iMutex.h>
#include <OS/Threads/iSemaphore.h>
#include <OS/Threads/iThread.h>
#include <OS/Threads/iThreadEvent.h>

#include <cstdint>
#include <vector>

/// Makes everything that concerns threads, and serves the calling thread; reached as
/// OS()->threadMgr(). Every operation may be called from any thread at any time.
class OS_API iThreadManager : public iObject
{
public:
    /// The position in a multi-wait's answer when no event is concerned.
    static constexpr std::uint32_t kNoPosition = 0xFFFFFFFFu;

    /// The wait result in the answer of waitForEvents.
    static constexpr unsigned int waitResult(std::uint64_t answer)
    {
        return static_cast<unsigned int>(answer & 0xFFFFFFFFu);
    }
    /// The position in the answer of waitForEvents: that of the event concerned, or kNoPosition.
    static constexpr std::uint32_t waitPosition(std::uint64_t answer)
    {
        return static_cast<std::uint32_t>(answer >> 32);
    }

    /// @param spinCount should be 0: spinning is not supported; any other value prints an assertion
    ///                  and is ignored
    virtual Tq::Ptr<iCriticalSection> createCriticalSection(unsigned int spinCount) const = 0;

    /// @param initialCount units available at once @param maxCount accepted and ignored
    virtual Tq::Ptr<iSemaphore> createSemaphore(unsigned int initialCount,
                                                unsigned int maxCount) const = 0;

    /// Makes an event, or finds one by its name.
    ///
    /// @param manualReset whether the event stays set until it is reset
    /// @param initialState whether it is set at first
    /// @param name null makes an event of the caller's own. With a name the process's event of that
    ///             name comes back, made by the first call; later calls' flags are ignored. Named
    ///             events live until the process ends, and are not to be asked for while its static
    ///             objects are being destroyed
    /// @throw std::runtime_error when the system refuses the event's locks, after a line
    virtual Tq::Ptr<iThreadEvent> createEvent(bool manualReset, bool initialState,
                                              const char* name) const = 0;

    /// @param name accepted and ignored; may be null
    /// @throw std::runtime_error when the system refuses the mutex, after a line
    virtual Tq::Ptr<iMutex> createMutex(const char* name) const = 0;

    /// Makes a thread, which starts at once.
    ///
    /// @return never null. When the system has no thread to give, an assertion is printed and the
    ///         object has no thread behind it
    virtual Tq::Ptr<iThread> createThread(const iThread::InitArgs& args) const = 0;

    /// Waits for any one, or for all, of several events.
    ///
    /// In "any" mode the set event of the lowest position satisfies the wait and is cleared if it
    /// is auto-reset; the others are left alone. In "all" mode the signals are consumed all
    /// together or not at all; waits for the same events in different orders do not lock each other
    /// out, and an event listed twice gives eWaitFailed at its second place.
    ///
    /// @param events made by this manager; at most 64 unless timeoutMs is 0. A null or foreign
    /// event
    ///               prints an assertion and gives eWaitFailed at its position
    /// @param waitAll "all" mode
    /// @param timeoutMs milliseconds; 0 asks once without blocking, iWaitable::kNoTimeOut waits
    ///                  without limit
    /// @return the wait result in the low half, the position in the high half (waitResult,
    ///         waitPosition). eWaitSignalled: the event taken, or the last one in "all" mode.
    ///         eWaitTimedOut: kNoPosition; in "all" mode the first event seen not set by the last
    ///         check, and kNoPosition when a wait with a time-out was not woken in between
    /// @throw Tq::Exception::RuntimeError "addSubscription failed" for more than 64 events,
    ///        "addSubscriber failed" when one of them already has 64 waiters; see
    ///        iThreadEvent::wait
    virtual std::uint64_t waitForEvents(const std::vector<Tq::Ptr<iThreadEvent>>& events,
                                        bool waitAll, unsigned int timeoutMs) const = 0;

    /// Calls the function with the argument.
    ///
    /// @param handler never called, deliberately: exceptions pass through
    /// @return 0, whatever the function returned; deliberate
    virtual iThread::eExecRC protectedExecute(iThread::eExecRC (*function)(void*), void* argument,
                                              void (*handler)(const iThread::Exception&)) const = 0;

    /// Not supported: prints an assertion. @return null
    virtual Tq::Ptr<iMutex> openMutex(const char* name) const = 0;

    /// The kernel's number for the calling thread; not iThread::getID().
    virtual std::uint32_t getCurrentThreadID() const = 0;

    /// Ends the calling thread after destroying what is on its stack.
    [[noreturn]] virtual void exitCurrentThread() const = 0;

    /// Pauses the calling thread. A signal ends the pause early, deliberately.
    virtual void sleep(unsigned int timeMs) const = 0;
};
