#pragma once

#include <OS/Threads/iThread.h>

#include <atomic>
#include <map>
#include <pthread.h>

/// iThread on a POSIX thread.
///
/// What the running thread itself reads and writes is a small counted block, so that the Thread may
/// be released while the body runs.
class Thread final : public iThread
{
public:
    /// Starts the thread. Failure prints an assertion and leaves the object without a thread.
    explicit Thread(const InitArgs& args);
    /// Detaches a thread that was never joined.
    ~Thread() override;
    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    std::uint32_t getID() const override;
    ePriority getPriority() const override;
    bool setPriority(ePriority priority) override;
    bool setAffinity(unsigned int mask) override;
    void resume() override;
    void suspend() override;
    bool waitForCompletion(unsigned int timeoutMs) const override;
    Tq::Ptr<iObject> getObject(const LightweightString<char>& name) override;
    void setObject(const LightweightString<char>& name, Tq::Ptr<iObject> object) override;

    /// Whether the system had a thread to give. Not to be asked once the thread has been waited
    /// for.
    bool hasThread() const { return handle_ != 0; }

    /// The POSIX start routine. @param shared a Shared that is counted for the new thread
    static void* execute(void* shared);
    /// The next number, from 1. Unguarded, deliberately: concurrent creations may share one.
    static std::uint32_t allocThreadID();
    static eExecRC protectedExecute(eExecRC (*function)(void*), void* argument,
                                    void (*handler)(const Exception&));
    [[noreturn]] static void exitCurrentThread();

private:
    struct Shared;

    void start(std::uint32_t stackSizeBytes);

    mutable pthread_t handle_ = 0; // 0 without a thread and once joined
    Tq::Ptr<Shared> shared_;
    [[maybe_unused]] ePriority priority_; // recorded, never read back
    std::map<LightweightString<char>, Tq::Ptr<iObject>> objects_;
    std::atomic<std::uint32_t> id_{0};
};
