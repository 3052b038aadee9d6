#pragma once

#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace OSInternal {

/// A descriptor that becomes readable by signal() and stays so until clear(). Any thread; signal()
/// neither blocks nor allocates.
class EventDescriptor
{
public:
    EventDescriptor() : descriptor_(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}
    EventDescriptor(const EventDescriptor&) = delete;
    EventDescriptor& operator=(const EventDescriptor&) = delete;
    ~EventDescriptor()
    {
        if (descriptor_ >= 0)
            close(descriptor_);
    }

    int get() const { return descriptor_; }
    void signal() const { eventfd_write(descriptor_, 1); }
    void clear() const
    {
        eventfd_t count = 0;
        eventfd_read(descriptor_, &count);
    }
    /// Waits for the signal and clears it. @param timeoutMs -1 waits without limit
    void wait(int timeoutMs) const
    {
        pollfd waited{descriptor_, POLLIN, 0};
        if (poll(&waited, 1, timeoutMs) > 0)
            clear();
    }

private:
    int descriptor_;
};

} // namespace OSInternal
