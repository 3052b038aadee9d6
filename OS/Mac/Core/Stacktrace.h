#pragma once

#include <OS/Core/LightweightString.h>

#include <vector>

/// The calling stack at the moment of construction: at most 25 frames, its own two included.
class Stacktrace
{
public:
    Stacktrace();
    ~Stacktrace();
    Stacktrace(const Stacktrace&) = delete;
    Stacktrace& operator=(const Stacktrace&) = delete;

    /// Appends one line for each frame but the first two: the demangled name, or the whole line as
    /// the system gives it. Appends nothing when there are fewer than three frames.
    void getPrintableStrings(std::vector<LightweightString<char>>& lines) const;

    /// Appends one such line for each of these return addresses, which were taken earlier.
    static void describe(void* const* addresses, int count,
                         std::vector<LightweightString<char>>& lines);

    /// Captures and appends in one step.
    static void get(std::vector<LightweightString<char>>& lines);

private:
    int count_;
    char** symbols_;
};
