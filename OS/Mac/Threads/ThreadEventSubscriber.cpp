#include "OS/Mac/Threads/ThreadEventSubscriber.h"

#include <OS/Core/Exception.h>

using OSInternal::pthreadFailed;
using OSInternal::throwIfPthreadFailed;

namespace {

constexpr char kPlace[] = "OS/Mac/ThreadEvent";

} // namespace

ThreadEvent::Subscriber::Subscriber()
{
    OSInternal::PthreadMutexAttributes attributes;
    throwIfPthreadFailed(kPlace, 44, attributes.initialise(), "pthread_mutexattr_init failed");
    throwIfPthreadFailed(kPlace, 45, attributes.setType(PTHREAD_MUTEX_ERRORCHECK),
                         "pthread_mutexattr_settype failed");
    throwIfPthreadFailed(kPlace, 47, mutex_.initialise(attributes), "pthread_mutex_init failed.");
    throwIfPthreadFailed(kPlace, 49, condition_.initialise(), "pthread_cond_int failed.");
    throwIfPthreadFailed(kPlace, 51, attributes.destroy(),
                         "pthread_mutexattr_destroy mtxAttr failed.");
}

ThreadEvent::Subscriber::~Subscriber()
{
    pthreadFailed(kPlace, 56, condition_.destroy());
    pthreadFailed(kPlace, 57, mutex_.destroy());
}

ThreadEvent::SafeSubscriber::SafeSubscriber(Subscriber* subscriber, const ThreadEvent* first)
    : subscriber_(subscriber)
{
    addSubscription(first);
}

ThreadEvent::SafeSubscriber::~SafeSubscriber()
{
    for (const ThreadEvent* event : events_)
        event->removeSubscriber(subscriber_);
}

void ThreadEvent::SafeSubscriber::addSubscription(const ThreadEvent* event)
{
    if (!event)
        return;
    if (events_.full())
        throw Tq::Exception::RuntimeError("addSubscription failed", kPlace, 74);
    events_.push_back(event);
}
