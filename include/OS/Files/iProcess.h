#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

#include <cstdint>

/// A child process. Made by iProcessManager::start.
///
/// Releasing it neither ends nor waits for the child, which is still collected when it ends. Any
/// thread.
class OS_API iProcess : public iObject
{
public:
    static constexpr unsigned int kForever = 0xFFFFFFFF;

    virtual unsigned int getID() const = 0;
    virtual bool isRunning() = 0;
    /// Waits for the end. @param timeoutMs kForever waits without end
    /// @return whether it has ended
    virtual bool wait(unsigned int timeoutMs) = 0;
    /// Its exit status; 128 plus the signal that ended it; -1 while it runs, and when something
    /// else in this program has collected it.
    virtual int getExitCode() = 0;
    /// The bytes of its standard output so far: all of them once it has ended; empty unless
    /// captured. At most 64 MiB are kept, the rest is read and dropped.
    virtual LightweightString<char> getOutput() = 0;
    /// The same for standard error.
    virtual LightweightString<char> getErrors() = 0;
    /// Sends bytes to its standard input; waits while the pipe is full. What two threads send does
    /// not mix.
    /// @return false when it does not read any more, or no input was asked for
    virtual bool writeInput(const void* bytes, std::uint64_t length) = 0;
    /// Ends its standard input, as the release of this object does. Waits for a writeInput of
    /// another thread.
    virtual void closeInput() = 0;
    /// Asks it to end (SIGTERM), and kills it (SIGKILL) when it has not after a time.
    /// @return whether it has ended
    virtual bool terminate(unsigned int graceMs) = 0;
};
