#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <fstream>
#include <future>
#include <list>
#include <mutex>
#include <string>
#include <thread>
#include <unistd.h>

/// Blocks until a condition holds, or for half a minute. @return whether it held
template <class Condition>
bool waitUntil(Condition condition)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Opens once, and lets through whoever waits. Unlike a promise it may be destroyed by the thread
/// that it let through while the one that opened it is still on its way out.
class Gate
{
public:
    void open()
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        open_ = true;
        changed_.notify_all();
    }
    void wait()
    {
        std::unique_lock<std::mutex> lock(mutex_);
        changed_.wait(lock, [this] { return open_; });
    }

private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool open_ = false;
};

/// Whether a thread of this process sleeps in the kernel, and how often it has gone to sleep so
/// far.
struct SleepState
{
    bool asleep = false;
    std::string switches;

    static SleepState of(pid_t thread)
    {
        std::ifstream status("/proc/self/task/" + std::to_string(thread) + "/status");
        SleepState result;
        for (std::string line; std::getline(status, line);) {
            if (line.rfind("State:", 0) == 0)
                result.asleep = line.find('S') != std::string::npos &&
                                line.find("(sleeping)") != std::string::npos;
            else if (line.rfind("voluntary_ctxt_switches:", 0) == 0)
                result.switches = line;
        }
        return result;
    }
};

/// Waits until a thread has gone to sleep and stays there. @return false after half a minute
inline bool waitUntilAsleep(pid_t thread)
{
    SleepState before;
    return waitUntil([&] {
        const SleepState now = SleepState::of(thread);
        const bool stays = before.asleep && now.asleep && now.switches == before.switches;
        before = now;
        return stays;
    });
}

/// Runs a piece of a test on a thread of its own; joined when it goes out of scope.
template <class Result>
class BackgroundThread
{
public:
    template <class Code>
    explicit BackgroundThread(Code code) : task_(std::move(code)), future_(task_.get_future())
    {
        thread_ = std::thread([this] {
            id_.store(gettid());
            task_();
        });
    }
    BackgroundThread(const BackgroundThread&) = delete;
    BackgroundThread& operator=(const BackgroundThread&) = delete;
    ~BackgroundThread() { join(); }

    /// Returns when the thread sleeps in the kernel: in the call that the test is about.
    bool waitUntilBlocked()
    {
        return waitUntil([&] { return id_.load() != 0; }) && waitUntilAsleep(id_.load());
    }
    bool finished() const
    {
        return future_.wait_for(std::chrono::seconds(0)) == std::future_status::ready;
    }
    /// Waits for the end. @return what the code returned; throws what it threw
    Result result()
    {
        join();
        return future_.get();
    }
    void join()
    {
        if (thread_.joinable())
            thread_.join();
    }

private:
    std::packaged_task<Result()> task_;
    std::future<Result> future_;
    std::atomic<pid_t> id_{0};
    std::thread thread_;
};

template <class Code>
BackgroundThread(Code) -> BackgroundThread<std::invoke_result_t<Code>>;

/// The same piece of code on several threads at once.
class BackgroundThreads
{
public:
    template <class Code>
    BackgroundThreads(int count, const Code& code)
    {
        for (int i = 0; i < count; ++i)
            threads_.emplace_back([code] { code(); });
    }
    void waitUntilBlocked()
    {
        for (auto& thread : threads_)
            thread.waitUntilBlocked();
    }
    void join()
    {
        for (auto& thread : threads_)
            thread.join();
    }

private:
    std::list<BackgroundThread<void>> threads_;
};
