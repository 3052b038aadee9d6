#include "OS/Mac/Files/Process.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <ctime>

namespace {

constexpr std::uint64_t kMostBytesAtOnce = 1 << 30;
constexpr unsigned int kKillMs = 10'000; // only a child stuck in the kernel lasts longer

// Keeps the calling thread from being ended by writing to a pipe that nobody reads.
class WithoutBrokenPipes
{
public:
    WithoutBrokenPipes()
    {
        sigset_t pending;
        sigemptyset(&signal_);
        sigaddset(&signal_, SIGPIPE);
        sigpending(&pending);
        wasPending_ = sigismember(&pending, SIGPIPE) == 1;
        pthread_sigmask(SIG_BLOCK, &signal_, &before_);
    }
    WithoutBrokenPipes(const WithoutBrokenPipes&) = delete;
    WithoutBrokenPipes& operator=(const WithoutBrokenPipes&) = delete;
    ~WithoutBrokenPipes()
    {
        constexpr timespec kNow{};
        if (!wasPending_)
            while (sigtimedwait(&signal_, nullptr, &kNow) < 0 && errno == EINTR) {
            }
        pthread_sigmask(SIG_SETMASK, &before_, nullptr);
    }

private:
    sigset_t signal_, before_;
    bool wasPending_;
};

} // namespace

Process::Process(std::shared_ptr<ChildProcess> child, OSInternal::Descriptor input)
    : child_(std::move(child)), input_(std::move(input))
{
}

unsigned int Process::getID() const
{
    return static_cast<unsigned int>(child_->id());
}

bool Process::isRunning()
{
    return !child_->hasEnded();
}

bool Process::wait(unsigned int timeoutMs)
{
    return child_->wait(timeoutMs);
}

int Process::getExitCode()
{
    return child_->exitCode();
}

LightweightString<char> Process::getOutput()
{
    return child_->output();
}

LightweightString<char> Process::getErrors()
{
    return child_->errors();
}

bool Process::writeInput(const void* bytes, std::uint64_t length)
{
    const std::lock_guard<std::mutex> lock(inputLock_);
    const WithoutBrokenPipes guard;
    const char* at = static_cast<const char*>(bytes);
    while (input_ && length > 0) {
        const ssize_t count = write(input_.get(), at, std::min(length, kMostBytesAtOnce));
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return false;
        at += count;
        length -= static_cast<std::uint64_t>(count);
    }
    return bool(input_);
}

void Process::closeInput()
{
    const std::lock_guard<std::mutex> lock(inputLock_);
    input_.reset();
}

bool Process::terminate(unsigned int graceMs)
{
    child_->signal(SIGTERM);
    if (child_->wait(graceMs))
        return true;
    child_->signal(SIGKILL);
    return child_->wait(kKillMs);
}
