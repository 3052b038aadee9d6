#pragma once

#include "Control/ControlCommand.h"

#include <OS/Core/Ptr.h>
#include <OS/Threads/iCriticalSection.h>

#include <cstdint>
#include <vector>

namespace Vantor {

/// Commands on their way from a controller's thread to the event loop: at most kMost, then jogs are
/// added up and the rest is left out. Any thread.
class ControlQueue
{
public:
    static constexpr std::size_t kMost = 64;

    ControlQueue();

    /// @param command null: something came that means nothing
    void add(const ControlCommand* command);
    /// Empties it. Jogs in a row come as one.
    std::vector<ControlCommand> take();
    /// Messages so far.
    std::uint64_t received() const;

private:
    const Tq::Ptr<iCriticalSection> lock_;
    std::vector<ControlCommand> commands_; ///< under lock_, and so the next
    std::uint64_t received_ = 0;
};

} // namespace Vantor
