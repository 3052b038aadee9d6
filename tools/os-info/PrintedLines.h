#pragma once

#include <string>
#include <vector>

namespace OsInfo {

/// Keeps what is printed on standard output, from construction to take(): the library says there
/// what fails, and a report for programs must not be mixed with it. On one thread, one at a time.
class PrintedLines
{
public:
    /// Where no file can be made for it, everything is printed as ever.
    PrintedLines();
    ~PrintedLines();
    PrintedLines(const PrintedLines&) = delete;
    PrintedLines& operator=(const PrintedLines&) = delete;

    /// Ends that. @return the lines, 1 MiB of them at most
    std::vector<std::string> take();

private:
    int file_;
    int standardOutput_ = -1;
};

} // namespace OsInfo
