#include "PrintedLines.h"

#include <cstdio>
#include <sstream>
#include <sys/mman.h>
#include <unistd.h>

namespace OsInfo {

PrintedLines::PrintedLines() : file_(memfd_create("printed", MFD_CLOEXEC))
{
    if (file_ < 0)
        return;
    std::fflush(stdout);
    standardOutput_ = dup(STDOUT_FILENO);
    if (standardOutput_ >= 0)
        dup2(file_, STDOUT_FILENO);
}

PrintedLines::~PrintedLines()
{
    take();
    if (file_ >= 0)
        close(file_);
}

std::vector<std::string> PrintedLines::take()
{
    if (standardOutput_ < 0)
        return {};
    std::fflush(stdout);
    dup2(standardOutput_, STDOUT_FILENO);
    close(standardOutput_);
    standardOutput_ = -1;

    std::string all(std::size_t{1} << 20, '\0');
    const ssize_t length = pread(file_, all.data(), all.size(), 0);
    all.resize(length > 0 ? static_cast<std::size_t>(length) : 0);
    std::vector<std::string> lines;
    std::istringstream text(all);
    for (std::string line; std::getline(text, line);)
        lines.push_back(line);
    return lines;
}

} // namespace OsInfo
