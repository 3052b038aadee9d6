#pragma once

#include <cstdlib>
#include <fcntl.h>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <termios.h>
#include <unistd.h>

/// A pseudo-terminal: its terminal side stands for a serial port, the test is the device at the
/// other end.
class PtyPair
{
public:
    PtyPair() : device_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC))
    {
        char name[64];
        if (device_ < 0 || grantpt(device_) != 0 || unlockpt(device_) != 0 ||
            ptsname_r(device_, name, sizeof name) != 0)
            throw std::runtime_error("no pseudo-terminal");
        path_ = name;
        // Raw from the beginning, as a line without a terminal's editing is.
        termios attributes;
        tcgetattr(device_, &attributes);
        cfmakeraw(&attributes);
        tcsetattr(device_, TCSANOW, &attributes);
    }
    PtyPair(const PtyPair&) = delete;
    PtyPair& operator=(const PtyPair&) = delete;
    ~PtyPair() { unplug(); }

    /// The port's path.
    const std::string& path() const { return path_; }
    /// The device's end.
    int device() const { return device_; }

    /// What the device sends. @return whether all of it went out
    bool send(const std::string& bytes) const
    {
        std::size_t sent = 0;
        while (sent < bytes.size()) {
            const ssize_t count = write(device_, bytes.data() + sent, bytes.size() - sent);
            if (count < 0)
                return false;
            sent += static_cast<std::size_t>(count);
        }
        return true;
    }
    /// What the port sent: up to `count` bytes, fewer when nothing comes for `limitMs`.
    std::string receive(std::size_t count, int limitMs = 30'000) const
    {
        std::string bytes(count, '\0');
        std::size_t received = 0;
        pollfd waited{device_, POLLIN, 0};
        while (received < count && poll(&waited, 1, limitMs) == 1) {
            const ssize_t got = read(device_, bytes.data() + received, count - received);
            if (got < 1)
                break;
            received += static_cast<std::size_t>(got);
        }
        bytes.resize(received);
        return bytes;
    }
    /// The line's settings.
    termios attributes() const
    {
        termios result{};
        tcgetattr(device_, &result);
        return result;
    }
    void setSpeed(speed_t speed) const
    {
        termios attributes = this->attributes();
        cfsetspeed(&attributes, speed);
        tcsetattr(device_, TCSANOW, &attributes);
    }
    /// The device goes away.
    void unplug()
    {
        if (device_ >= 0)
            close(device_);
        device_ = -1;
    }

private:
    int device_;
    std::string path_;
};
