#pragma once

#include "OS/Mac/Core/Descriptor.h"

#include <OS/Core/LightweightString.h>

#include <mutex>
#include <poll.h>
#include <sys/types.h>
#include <vector>

/// A child of this process: its end, and what it writes. Shared by the client's Process and the
/// ChildWatcher.
///
/// It is collected by its own number only, by whoever asks first, so that children that the
/// application starts in other ways are left alone. Where something else collects it (or SIGCHLD is
/// ignored) its exit code stays -1.
///
/// Any thread. One lock, a leaf; nothing is waited for under it.
class ChildProcess
{
public:
    using Text = LightweightString<char>;

    /// @param output what it writes to its standard output: a pipe's end that does not block, or
    ///               none; `errors` likewise
    ChildProcess(pid_t id, OSInternal::Descriptor output, OSInternal::Descriptor errors);

    pid_t id() const { return id_; }
    /// Collects it when it has ended. @return whether it has
    bool hasEnded();
    int exitCode();
    /// @param timeoutMs iProcess::kForever waits without end @return whether it has ended
    bool wait(unsigned int timeoutMs);
    /// Sends a signal unless it has ended; its number can not have come to mean another process.
    void signal(int number);

    /// All that it had written when this was called, up to kMostBytes.
    Text output() { return textOf(output_); }
    Text errors() { return textOf(errors_); }
    static constexpr std::size_t kMostBytes = 64 * 1024 * 1024;

    /// Adds what has to be waited for. @return false when that is not all: ask again after a while
    bool addTo(std::vector<pollfd>& polls);
    /// Reads and collects what there is. @return whether there can be more
    bool serve();

private:
    struct Stream
    {
        OSInternal::Descriptor pipe; // none after the end
        Text text;
    };

    bool collect();
    static void drain(Stream& stream);
    Text textOf(Stream& stream);

    const pid_t id_;
    OSInternal::Descriptor
        ended_; // readable after the end; none where the system has no such thing
    std::mutex lock_;
    bool hasEnded_ = false;
    int exitCode_ = -1;
    Stream output_;
    Stream errors_;
};
