#include "OS/Mac/Files/ChildWatcher.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>

namespace {

constexpr int kPauseMs = 20; // for a child whose end can not be waited for

} // namespace

ChildWatcher::ChildWatcher() : wake_(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {}

ChildWatcher& ChildWatcher::instance()
{
    static ChildWatcher* const watcher = new ChildWatcher; // its thread outlives static objects
    return *watcher;
}

void ChildWatcher::watch(std::shared_ptr<ChildProcess> child)
{
    const std::lock_guard<std::mutex> lock(lock_);
    children_.push_back(std::move(child));
    if (!hasThread_)
        hasThread_ = startThread();
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = write(wake_.get(), &one, sizeof one);
}

// Without signals: they are for the application's threads.
bool ChildWatcher::startThread()
{
    sigset_t all, before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    pthread_t thread;
    const auto code = [](void* watcher) -> void* {
        static_cast<ChildWatcher*>(watcher)->run();
        return nullptr;
    };
    const int error = pthread_create(&thread, nullptr, code, this);
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (error != 0) {
        OSInternal::reportPthreadFailure("OS/Mac/ChildWatcher", 1, error);
        return false;
    }
    pthread_setname_np(thread, "Children");
    pthread_detach(thread);
    return true;
}

ChildWatcher::Children ChildWatcher::children()
{
    const std::lock_guard<std::mutex> lock(lock_);
    return children_;
}

void ChildWatcher::forget(const Children& gone)
{
    const std::lock_guard<std::mutex> lock(lock_);
    std::erase_if(children_, [&](const auto& child) {
        return std::find(gone.begin(), gone.end(), child) != gone.end();
    });
}

void ChildWatcher::waitForNews(const Children& children)
{
    std::vector<pollfd> polls{{wake_.get(), POLLIN, 0}};
    int timeoutMs = -1;
    for (const auto& child : children)
        if (!child->addTo(polls))
            timeoutMs = kPauseMs;
    poll(polls.data(), polls.size(), timeoutMs);
    std::uint64_t count;
    [[maybe_unused]] const ssize_t got = read(wake_.get(), &count, sizeof count);
}

void ChildWatcher::run()
{
    for (;;) {
        const Children watched = children();
        waitForNews(watched);
        Children gone;
        for (const auto& child : watched)
            if (!child->serve())
                gone.push_back(child);
        if (!gone.empty())
            forget(gone);
    }
}
