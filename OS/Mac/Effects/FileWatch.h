#pragma once

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

/// Notices that files have changed, when it is asked: their times, sizes and identities are
/// compared, at most twice a second. One thread at a time.
class FileWatch
{
public:
    using Clock = std::chrono::steady_clock;

    /// Starts anew with these files as they are now. @param paths for the system, the main file
    /// first
    void watch(std::vector<std::string> paths);
    /// Whether one of them is another than when they were last watched. While the main file is
    /// missing nothing has changed: whoever replaces it is not done.
    bool hasChanged(Clock::time_point now = Clock::now());
    const std::vector<std::string>& paths() const { return paths_; }

private:
    // What is not there has no identity.
    struct Stamp
    {
        dev_t device = 0;
        ino_t inode = 0;
        off_t size = 0;
        std::int64_t seconds = 0;
        long nanoseconds = 0;

        static Stamp of(const std::string& path);
        friend bool operator==(const Stamp&, const Stamp&) = default;
    };

    std::vector<std::string> paths_;
    std::vector<Stamp> stamps_;
    Clock::time_point next_{};
};
