#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Threads/iThreadEvent.h>

#include "OS/Mac/Threads/FixedSizeVector.h"
#include "OS/Mac/Threads/PthreadMutex.h"

#include <atomic>
#include <cstdint>
#include <ctime>
#include <optional>
#include <vector>

/// iThreadEvent, and the waits for several events, without any multi-wait of the system's: each
/// waiting call owns a Subscriber on its stack and registers it with every event it waits for.
///
/// Locks, by published sequence: a wait takes its subscriber's mutex under an event's state lock
/// and, woken, the state lock under its subscriber's mutex. The two orders do not lock each other
/// out: only the waiter itself and set() take a subscriber's mutex, and set() holds no state lock
/// then. set() takes the list lock and inside it each subscriber's mutex. "All" waits hold the
/// state locks of all their events, taken in address order.
class ThreadEvent final : public iThreadEvent
{
public:
    static constexpr std::uint32_t kMaxWaiters = 64;

    class Subscriber;
    class SafeSubscriber;
    using Events = std::vector<Tq::Ptr<iThreadEvent>>;

    /// @param name accepted and not kept @throw std::runtime_error after a line
    ThreadEvent(bool manualReset, bool initialState, const char* name);
    ~ThreadEvent() override;

    unsigned int wait(unsigned int timeoutMs) const override;
    bool set() override;
    void reset() override;

    /// Registers a waiter. @throw Tq::Exception::RuntimeError for the 65th, with the list left
    /// locked, deliberately
    void addSubscriber(Subscriber* subscriber) const;
    void removeSubscriber(Subscriber* subscriber) const;

    /// See iThreadManager::waitForEvents.
    static std::uint64_t waitForEvents(const Events& events, bool waitAll, unsigned int timeoutMs);
    static std::uint64_t waitForEvents0(const Events& events, bool waitAll);
    static std::uint64_t waitForEventsNonZero(const Events& events, unsigned int timeoutMs,
                                              bool waitAll);

private:
    bool isSignalled() const { return signalled_.load(std::memory_order_relaxed); }
    // Under the state lock.
    void consume() const
    {
        if (!manualReset_)
            signalled_.store(false, std::memory_order_relaxed);
    }

    unsigned int poll() const;
    unsigned int waitForEver(Subscriber& subscriber) const;
    unsigned int waitUntil(Subscriber& subscriber, const timespec& deadline) const;
    unsigned int finishTimedWait(Subscriber& subscriber, bool waited) const;
    bool wake(Subscriber& subscriber) const;

    static std::uint64_t pollAny(const Events& events);
    static std::uint64_t pollAll(const Events& events);
    static std::uint64_t consumeAll(const Events& events);
    static void unlockAll(const Events& events, const iThreadEvent* highest);
    static std::optional<std::uint64_t> takeAny(const Events& events, Subscriber& subscriber);
    static bool allSeenSignalled(const Events& events);

    const bool manualReset_;
    mutable OSInternal::PthreadMutex listLock_;
    mutable FixedSizeVector<Subscriber*, kMaxWaiters> subscribers_; // under listLock_
    mutable OSInternal::PthreadMutex stateLock_;
    mutable std::atomic<bool>
        signalled_; // written under stateLock_; a multi-wait's scan peeks without
};
