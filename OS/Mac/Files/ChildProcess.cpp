#include "OS/Mac/Files/ChildProcess.h"

#include <OS/Files/iProcess.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t kReadBytes = 64 * 1024;
// A pipe's usual room: what is in it when asked, and no endless run after a writer that never
// stops.
constexpr std::size_t kMostReads = 16;
constexpr int kLongestPauseMs = 50;

int descriptorOf(pid_t id)
{
    return static_cast<int>(syscall(SYS_pidfd_open, id, 0));
}

int remainingMs(Clock::time_point limit)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(limit - Clock::now()).count();
    return static_cast<int>(std::clamp<long long>(left, 0, 1'000'000));
}

} // namespace

ChildProcess::ChildProcess(pid_t id, OSInternal::Descriptor output, OSInternal::Descriptor errors)
    : id_(id),
      ended_(descriptorOf(id)), output_{std::move(output), {}}, errors_{std::move(errors), {}}
{
}

bool ChildProcess::collect()
{
    if (hasEnded_)
        return true;
    int status = 0;
    const pid_t found = waitpid(id_, &status, WNOHANG);
    if (found == 0 || (found < 0 && errno != ECHILD))
        return false;
    hasEnded_ = true;
    if (found > 0)
        exitCode_ = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return true;
}

bool ChildProcess::hasEnded()
{
    const std::lock_guard<std::mutex> lock(lock_);
    return collect();
}

int ChildProcess::exitCode()
{
    const std::lock_guard<std::mutex> lock(lock_);
    collect();
    return exitCode_;
}

bool ChildProcess::wait(unsigned int timeoutMs)
{
    const bool forever = timeoutMs == iProcess::kForever;
    const auto limit = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (int pauseMs = 1; !hasEnded(); pauseMs = std::min(pauseMs * 2, kLongestPauseMs)) {
        const int leftMs = forever ? -1 : remainingMs(limit);
        if (leftMs == 0)
            return false;
        if (ended_) {
            pollfd end{ended_.get(), POLLIN, 0};
            poll(&end, 1, leftMs);
        } else {
            poll(nullptr, 0, forever ? pauseMs : std::min(pauseMs, leftMs));
        }
    }
    return true;
}

void ChildProcess::signal(int number)
{
    const std::lock_guard<std::mutex> lock(lock_);
    if (!collect())
        kill(id_, number);
}

void ChildProcess::drain(Stream& stream)
{
    std::array<char, kReadBytes> buffer;
    for (std::size_t reads = 0; stream.pipe && reads < kMostReads; ++reads) {
        const ssize_t count = read(stream.pipe.get(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0 && errno == EAGAIN)
            return;
        if (count <= 0) {
            stream.pipe.reset();
            return;
        }
        const std::size_t room = kMostBytes - stream.text.size();
        stream.text.append(buffer.data(), static_cast<std::uint32_t>(
                                              std::min(static_cast<std::size_t>(count), room)));
    }
}

ChildProcess::Text ChildProcess::textOf(Stream& stream)
{
    const std::lock_guard<std::mutex> lock(lock_);
    drain(stream);
    return stream.text;
}

bool ChildProcess::addTo(std::vector<pollfd>& polls)
{
    const std::lock_guard<std::mutex> lock(lock_);
    for (const Stream* stream : {&output_, &errors_})
        if (stream->pipe)
            polls.push_back({stream->pipe.get(), POLLIN, 0});
    if (!hasEnded_ && ended_)
        polls.push_back({ended_.get(), POLLIN, 0});
    return hasEnded_ || ended_;
}

bool ChildProcess::serve()
{
    const std::lock_guard<std::mutex> lock(lock_);
    drain(output_);
    drain(errors_);
    return !collect() || output_.pipe || errors_.pipe;
}
