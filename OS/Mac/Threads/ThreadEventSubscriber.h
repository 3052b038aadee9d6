#pragma once

#include "OS/Mac/Threads/ThreadEvent.h"

/// One waiting call: what set() wakes. It lives on the waiter's stack.
class ThreadEvent::Subscriber
{
public:
    /// @throw std::runtime_error after a line
    Subscriber();
    ~Subscriber();

    mutable OSInternal::PthreadMutex mutex_;
    OSInternal::PthreadCondition condition_;
};

/// Takes a subscriber out of the events that it was registered with, on every way out of a wait.
///
/// Recording an event registers nothing: call its addSubscriber first.
class ThreadEvent::SafeSubscriber
{
public:
    /// @param first null, or an event to record
    SafeSubscriber(Subscriber* subscriber, const ThreadEvent* first);
    /// In the order of recording. An exception ends the process.
    ~SafeSubscriber();
    SafeSubscriber(const SafeSubscriber&) = delete;
    SafeSubscriber& operator=(const SafeSubscriber&) = delete;

    /// @param event null is ignored @throw Tq::Exception::RuntimeError "addSubscription failed" for
    /// the 65th
    void addSubscription(const ThreadEvent* event);

private:
    Subscriber* subscriber_;
    FixedSizeVector<const ThreadEvent*, kMaxWaiters> events_;
};
