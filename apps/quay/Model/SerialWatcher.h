#pragma once

#include "Model/BoardData.h"

#include <OS/Core/Ptr.h>
#include <OS/Devices/iComPort.h>

#include <functional>

namespace Quay {

/// Reads what comes over a serial port. Used on the thread of the event loop.
class SerialWatcher
{
public:
    /// @param news called on the port's thread, without locks, when bytes can be taken
    explicit SerialWatcher(std::function<void()> news);
    ~SerialWatcher();
    SerialWatcher(const SerialWatcher&) = delete;
    SerialWatcher& operator=(const SerialWatcher&) = delete;

    /// Lets go of the port before, and opens another. @return what is known of it now
    SerialMonitor watch(const Text& path, int speed);
    void setSpeed(int speed);
    void stop();
    /// Adds what has come. @return whether anything has
    bool take(SerialMonitor& monitor);

private:
    class Inbox;

    std::function<void()> news_;
    Tq::Ptr<Inbox> inbox_;
    Tq::Ptr<iComPort> port_;
};

} // namespace Quay
