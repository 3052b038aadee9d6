#include "Control/ControlQueue.h"

#include <OS.h>
#include <OS/Threads/CriticalSectionLock.h>
#include <OS/Threads/iThreadManager.h>

#include <algorithm>

namespace Vantor {

ControlQueue::ControlQueue() : lock_(OS()->threadMgr()->createCriticalSection(0)) {}

void ControlQueue::add(const ControlCommand* command)
{
    using Kind = ControlCommand::Kind;
    const CriticalSectionLock held(lock_);
    ++received_;
    if (!command)
        return;
    ControlCommand* const last = commands_.empty() ? nullptr : &commands_.back();
    // Only the newest speed counts, and frames add up.
    if (last && last->kind == command->kind && command->kind == Kind::eShuttle)
        last->value = command->value;
    else if (last && last->kind == command->kind && command->kind == Kind::eJog)
        last->value =
            std::clamp(last->value + command->value, -kFurthestJog * 100, kFurthestJog * 100);
    else if (commands_.size() < kMost)
        commands_.push_back(*command);
}

std::vector<ControlCommand> ControlQueue::take()
{
    const CriticalSectionLock held(lock_);
    return std::exchange(commands_, {});
}

std::uint64_t ControlQueue::received() const
{
    const CriticalSectionLock held(lock_);
    return received_;
}

} // namespace Vantor
