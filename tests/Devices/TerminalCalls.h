#pragma once

#include <termios.h>
#include <utility>
#include <vector>

/// The library's terminal calls under the tests' control, on every thread, for the life of a scope;
/// one at a time. The linker sends them through here (see tests/CMakeLists.txt).
class TerminalCalls
{
public:
    /// @param error what every call answers; 0 lets them through
    explicit TerminalCalls(int error);
    ~TerminalCalls();
    TerminalCalls(const TerminalCalls&) = delete;
    TerminalCalls& operator=(const TerminalCalls&) = delete;

    /// Requests about modem lines and flushes are answered here, with success, and noted: the
    /// request and the value that its argument points to, or the argument where that is a number.
    void answerRequests() { answersRequests = true; }
    std::vector<std::pair<unsigned long, long>> requests() const;
    /// What the line was set to, in turn.
    std::vector<termios> settings() const;

    const int error;
    bool answersRequests = false;
};

/// No system call of this kind succeeds while it lives, on any thread.
class NoThreads
{
public:
    NoThreads();
    ~NoThreads();
};
class NoWakeups
{
public:
    NoWakeups();
    ~NoWakeups();
};
