#include "Devices/TerminalCalls.h"

#include <atomic>
#include <cerrno>
#include <cstdarg>
#include <mutex>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/ioctl.h>

namespace {

std::atomic<TerminalCalls*> active;
std::atomic<bool> threadsRefused;
std::atomic<bool> wakeupsRefused;
std::mutex notesLock;
std::vector<std::pair<unsigned long, long>> notedRequests;
std::vector<termios> notedSettings;

// @return whether the call is not to be made, and reports an error
bool refused()
{
    const TerminalCalls* calls = active;
    if (!calls || calls->error == 0)
        return false;
    errno = calls->error;
    return true;
}

} // namespace

TerminalCalls::TerminalCalls(int error_) : error(error_)
{
    notedRequests.clear();
    notedSettings.clear();
    active = this;
}

TerminalCalls::~TerminalCalls()
{
    active = nullptr;
}

std::vector<std::pair<unsigned long, long>> TerminalCalls::requests() const
{
    const std::lock_guard<std::mutex> lock(notesLock);
    return notedRequests;
}

std::vector<termios> TerminalCalls::settings() const
{
    const std::lock_guard<std::mutex> lock(notesLock);
    return notedSettings;
}

NoThreads::NoThreads()
{
    threadsRefused = true;
}
NoThreads::~NoThreads()
{
    threadsRefused = false;
}
NoWakeups::NoWakeups()
{
    wakeupsRefused = true;
}
NoWakeups::~NoWakeups()
{
    wakeupsRefused = false;
}

extern "C" {

int __real_ioctl(int fd, unsigned long request, ...);
int __wrap_ioctl(int fd, unsigned long request, ...)
{
    std::va_list list;
    va_start(list, request);
    void* argument = va_arg(list, void*);
    va_end(list);
    if (refused())
        return -1;
    const TerminalCalls* calls = active;
    const bool pointsToLines = request == TIOCMSET || request == TIOCMBIC || request == TIOCMBIS;
    if (calls && calls->answersRequests && (pointsToLines || request == TCFLSH)) {
        const std::lock_guard<std::mutex> lock(notesLock);
        notedRequests.emplace_back(request, pointsToLines ? *static_cast<int*>(argument)
                                                          : reinterpret_cast<long>(argument));
        return 0;
    }
    return __real_ioctl(fd, request, argument);
}

int __real_tcsetattr(int fd, int actions, const termios* attributes);
int __wrap_tcsetattr(int fd, int actions, const termios* attributes)
{
    if (refused())
        return -1;
    if (active) {
        const std::lock_guard<std::mutex> lock(notesLock);
        notedSettings.push_back(*attributes);
    }
    return __real_tcsetattr(fd, actions, attributes);
}

int __real_tcgetattr(int fd, termios* attributes);
int __wrap_tcgetattr(int fd, termios* attributes)
{
    return refused() ? -1 : __real_tcgetattr(fd, attributes);
}

int __real_tcdrain(int fd);
int __wrap_tcdrain(int fd)
{
    return refused() ? -1 : __real_tcdrain(fd);
}

int __real_eventfd(unsigned int count, int flags);
int __wrap_eventfd(unsigned int count, int flags)
{
    if (!wakeupsRefused)
        return __real_eventfd(count, flags);
    errno = EMFILE;
    return -1;
}

int __real_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument);
int __wrap_pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*body)(void*),
                          void* argument)
{
    return threadsRefused ? EAGAIN : __real_pthread_create(thread, attributes, body, argument);
}
}
