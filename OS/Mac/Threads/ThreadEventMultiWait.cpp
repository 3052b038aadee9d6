#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Threads/ThreadEvent.h"
#include "OS/Mac/Threads/ThreadEventSubscriber.h"
#include "OS/Mac/Threads/ThreadManager.h"

#include <OS/Core/Exception.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <typeinfo>

namespace {

using Events = ThreadEvent::Events;

constexpr char kPlace[] = "OS/Mac/ThreadEvent";
constexpr std::uint32_t kNoPosition = iThreadManager::kNoPosition;

bool failed(int line, int error)
{
    return OSInternal::pthreadFailed(kPlace, line, error);
}

std::uint64_t answer(unsigned int result, std::size_t position)
{
    return std::uint64_t{static_cast<std::uint32_t>(position)} << 32 | result;
}

// The class is final, so comparing types is the whole dynamic cast, at a fraction of its price.
const ThreadEvent* asThreadEvent(const iThreadEvent* event)
{
    return event && typeid(*event) == typeid(ThreadEvent) ? static_cast<const ThreadEvent*>(event)
                                                          : nullptr;
}

const ThreadEvent& at(const Events& events, std::size_t position)
{
    return static_cast<const ThreadEvent&>(*events[position]);
}

// @return the position of the first pointer that is no event of ours, reported; else the number of
// events
std::size_t findForeign(const Events& events)
{
    const auto found = std::find_if(events.begin(), events.end(), [](const auto& event) {
        return asThreadEvent(event.get()) == nullptr;
    });
    if (found != events.end())
        OSInternal::reportAssertion("threadEvent != NULL", "OS/Mac/ThreadEvent line 368");
    return static_cast<std::size_t>(found - events.begin());
}

bool isRepeated(const Events& events, std::size_t position)
{
    const auto here = events.begin() + static_cast<std::ptrdiff_t>(position);
    return std::find(events.begin(), here, *here) != here;
}

// The event of the lowest address above another's, or null: address order without an array to sort.
const ThreadEvent* nextByAddress(const Events& events, const iThreadEvent* previous)
{
    const std::less<const iThreadEvent*> before;
    const iThreadEvent* lowest = nullptr;
    for (const auto& event : events)
        if (before(previous, event.get()) && (!lowest || before(event.get(), lowest)))
            lowest = event.get();
    return static_cast<const ThreadEvent*>(lowest);
}

} // namespace

std::uint64_t ThreadEvent::waitForEvents(const Events& events, bool waitAll, unsigned int timeoutMs)
{
    return timeoutMs == 0 ? waitForEvents0(events, waitAll)
                          : waitForEventsNonZero(events, timeoutMs, waitAll);
}

std::uint64_t ThreadEvent::waitForEvents0(const Events& events, bool waitAll)
{
    return waitAll ? pollAll(events) : pollAny(events);
}

std::uint64_t ThreadEvent::pollAny(const Events& events)
{
    for (std::size_t i = 0; i < events.size(); ++i) {
        const ThreadEvent* event = asThreadEvent(events[i].get());
        if (!event)
            return answer(eWaitFailed, findForeign(events));
        if (failed(600, event->stateLock_.lock())) // a line of our own
            return answer(eWaitFailed, i);
        if (event->isSignalled()) {
            event->consume();
            return answer(failed(612, event->stateLock_.unlock()) ? eWaitFailed : eWaitSignalled,
                          i);
        }
        failed(628, event->stateLock_.unlock());
    }
    return answer(eWaitTimedOut, kNoPosition);
}

std::uint64_t ThreadEvent::pollAll(const Events& events)
{
    if (const std::size_t foreign = findForeign(events); foreign < events.size())
        return answer(eWaitFailed, foreign);

    const iThreadEvent* highest = nullptr;
    while (const ThreadEvent* next = nextByAddress(events, highest)) {
        if (failed(645, next->stateLock_.lock())) { // a line of our own
            unlockAll(events, highest);
            const auto found = std::find_if(events.begin(), events.end(),
                                            [&](const auto& event) { return event.get() == next; });
            return answer(eWaitFailed, static_cast<std::size_t>(found - events.begin()));
        }
        highest = next;
    }

    for (std::size_t i = 0; i < events.size(); ++i) {
        const bool repeated = isRepeated(events, i);
        if (!repeated && at(events, i).isSignalled())
            continue;
        unlockAll(events, highest);
        return answer(repeated ? eWaitFailed : eWaitTimedOut, i);
    }
    return consumeAll(events);
}

// With every state locked and signalled, and no event listed twice.
std::uint64_t ThreadEvent::consumeAll(const Events& events)
{
    unsigned int result = eWaitSignalled;
    for (std::size_t i = events.size(); i-- > 0;) {
        const ThreadEvent& event = at(events, i);
        event.consume();
        if (failed(670, event.stateLock_.unlock()))
            result = eWaitFailed;
    }
    return answer(result, events.size() - 1);
}

// Unlocks the states up to the highest address that was locked, backwards.
void ThreadEvent::unlockAll(const Events& events, const iThreadEvent* highest)
{
    const std::less<const iThreadEvent*> before;
    for (std::size_t i = events.size(); i-- > 0;)
        if (highest && !before(highest, events[i].get()) && !isRepeated(events, i))
            failed(690, at(events, i).stateLock_.unlock());
}

std::uint64_t ThreadEvent::waitForEventsNonZero(const Events& events, unsigned int timeoutMs,
                                                bool waitAll)
{
    if (timeoutMs == 0)
        return waitForEvents0(events, waitAll);
    timespec deadline{};
    if (timeoutMs != kNoTimeOut)
        ThreadManager::MsecToTimespecAbs(deadline, timeoutMs);
    if (events.size() > kMaxWaiters)
        throw Tq::Exception::RuntimeError("addSubscription failed", kPlace, 74);
    if (const std::size_t foreign = findForeign(events); foreign < events.size())
        return answer(eWaitFailed, foreign);

    Subscriber subscriber;
    SafeSubscriber registrations(&subscriber, nullptr);
    for (std::size_t i = 0; i < events.size(); ++i) {
        at(events, i).addSubscriber(&subscriber);
        registrations.addSubscription(&at(events, i));
    }

    std::uint32_t lastPosition = kNoPosition;
    for (;;) {
        if (failed(396, subscriber.mutex_.lock()))
            return answer(eWaitFailed, kNoPosition);
        if (!waitAll)
            if (const auto taken = takeAny(events, subscriber))
                return *taken;
        if (!waitAll || !allSeenSignalled(events)) {
            const int rc = timeoutMs == kNoTimeOut
                               ? subscriber.condition_.wait(subscriber.mutex_)
                               : subscriber.condition_.waitUntil(subscriber.mutex_, deadline);
            if (rc != 0) {
                failed(489, subscriber.mutex_.unlock());
                return rc == ETIMEDOUT ? answer(eWaitTimedOut, lastPosition)
                                       : answer(eWaitFailed, kNoPosition);
            }
        }
        if (failed(507, subscriber.mutex_.unlock()))
            return answer(eWaitFailed, kNoPosition);
        const std::uint64_t found = waitForEvents0(events, waitAll);
        if (iThreadManager::waitResult(found) != eWaitTimedOut)
            return found;
        lastPosition = iThreadManager::waitPosition(found);
    }
}

// Consumes the first event found signalled and unlocks the subscriber's mutex; nothing when none
// is.
std::optional<std::uint64_t> ThreadEvent::takeAny(const Events& events, Subscriber& subscriber)
{
    for (std::size_t i = 0; i < events.size(); ++i) {
        const ThreadEvent& event = at(events, i);
        if (!event.isSignalled())
            continue;
        if (failed(418, event.stateLock_.lock())) { // a line of our own
            subscriber.mutex_.unlock();
            return answer(eWaitFailed, i);
        }
        if (!event.isSignalled()) {
            event.stateLock_.unlock();
            continue;
        }
        event.consume();
        const bool stateFailed = failed(432, event.stateLock_.unlock());
        const bool subscriberFailed = failed(433, subscriber.mutex_.unlock());
        return answer(stateFailed || subscriberFailed ? eWaitFailed : eWaitSignalled, i);
    }
    return std::nullopt;
}

bool ThreadEvent::allSeenSignalled(const Events& events)
{
    return std::all_of(events.begin(), events.end(), [](const auto& event) {
        return static_cast<const ThreadEvent&>(*event).isSignalled();
    });
}
