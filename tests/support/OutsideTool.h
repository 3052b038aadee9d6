#pragma once

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <sys/wait.h>

/// Programs of others that judge what we write, and write what we read.

/// Whether the search path has a program.
inline bool hasTool(const std::string& name)
{
    return std::system(("command -v " + name + " >/dev/null 2>&1").c_str()) == 0;
}

/// A word of the shell that stands for any text.
inline std::string quoted(const std::string& text)
{
    std::string result = "'";
    for (const char c : text)
        result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

struct ToolAnswer
{
    int status;
    std::string output; ///< standard output, bytes as they are
};

/// Runs a line of the shell; its standard error is dropped.
inline ToolAnswer runTool(const std::string& line)
{
    std::FILE* pipe = popen(("( " + line + " ) 2>/dev/null").c_str(), "r");
    ToolAnswer answer{-1, {}};
    if (!pipe)
        return answer;
    char buffer[65'536];
    for (std::size_t count; (count = std::fread(buffer, 1, sizeof buffer, pipe)) > 0;)
        answer.output.append(buffer, count);
    const int status = pclose(pipe);
    answer.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return answer;
}
