#include "support/SystemSteps.h"

#include <atomic>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

// Other threads' calls may pass by while nothing is armed.
std::atomic<int> steps{0};
std::atomic<int> exitStep{0};
std::atomic<int> failStep{0};
std::atomic<int> failure{0};

// @return whether the call is to fail
bool step()
{
    const int current = ++steps;
    if (current == exitStep)
        _exit(SystemSteps::kExitStatus);
    if (current != failStep)
        return false;
    errno = failure;
    return true;
}

} // namespace

namespace SystemSteps {

void exitAt(int step)
{
    reset();
    exitStep = step;
}

void failAt(int step, int error)
{
    reset();
    failStep = step;
    failure = error;
}

int count()
{
    return steps;
}

void reset()
{
    steps = 0;
    exitStep = 0;
    failStep = 0;
}

} // namespace SystemSteps

#define OS_TEST_STEP(name, parameters, arguments)                                                  \
    int __real_##name parameters;                                                                  \
    int __wrap_##name parameters                                                                   \
    {                                                                                              \
        return step() ? -1 : __real_##name arguments;                                              \
    }

extern "C" {
OS_TEST_STEP(openat, (int folder, const char* path, int flags, mode_t mode),
             (folder, path, flags, mode))
OS_TEST_STEP(flock, (int file, int operation), (file, operation))
OS_TEST_STEP(fsync, (int file), (file))
OS_TEST_STEP(fchmod, (int file, mode_t mode), (file, mode))
OS_TEST_STEP(faccessat, (int folder, const char* path, int mode, int flags),
             (folder, path, mode, flags))
OS_TEST_STEP(renameat, (int from, const char* a, int to, const char* b), (from, a, to, b))
OS_TEST_STEP(unlinkat, (int folder, const char* path, int flags), (folder, path, flags))

ssize_t __real_write(int file, const void* bytes, size_t length);
ssize_t __wrap_write(int file, const void* bytes, size_t length)
{
    return step() ? -1 : __real_write(file, bytes, length);
}
}
