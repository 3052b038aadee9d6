#pragma once

#include "support/BackgroundThread.h"

#include <OS/Devices/iComPortReceiver.h>

#include <functional>
#include <mutex>
#include <string>
#include <vector>

/// A receiver that keeps what it got.
class PortReceiver : public iComPortReceiver
{
public:
    void dataReceived(unsigned int count) override
    {
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            bytes_.append(buffer_, count);
            counts_.push_back(count);
        }
        onData();
    }
    void* getBuffer() override
    {
        onRead();
        return buffer_;
    }

    std::string bytes() const
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return bytes_;
    }
    std::vector<unsigned int> counts() const
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        return counts_;
    }
    /// Waits until so many bytes are there. @return whether they came
    bool waitFor(std::size_t count) const
    {
        return waitUntil([&] { return bytes().size() >= count; });
    }

    // Set before the port is opened; called on the port's thread.
    std::function<void()> onData = [] {};
    std::function<void()> onRead = [] {};

private:
    mutable std::mutex mutex_;
    char buffer_[8] = {};
    std::string bytes_;
    std::vector<unsigned int> counts_;
};
