#include "OS/Mac/Threads/IOCompletionPort.h"

#include <OS.h>
#include <OS/Threads/iThreadManager.h>

namespace {

constexpr unsigned int kPollMs = 1000;

} // namespace

iIOCompletionPort::Status IOCompletionPort::getStatus() const
{
    while (active_.load(std::memory_order_relaxed))
        OS()->threadMgr()->sleep(kPollMs);
    return {2, 0};
}

void IOCompletionPort::terminate() const
{
    active_.store(false, std::memory_order_relaxed);
}

bool IOCompletionPort::attach(Tq::Ptr<iFile> /*file*/)
{
    return false;
}
