#pragma once

#include <OS/Threads/iIOCompletionPort.h>

#include <atomic>

/// iIOCompletionPort: a flag that getStatus polls.
class IOCompletionPort final : public iIOCompletionPort
{
public:
    Status getStatus() const override;
    void terminate() const override;
    bool attach(Tq::Ptr<iFile> file) override;

private:
    mutable std::atomic<bool> active_{true};
};
