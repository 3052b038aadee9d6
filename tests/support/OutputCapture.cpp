#include "support/OutputCapture.h"

#include <cstdio>
#include <iostream>
#include <sys/mman.h>
#include <unistd.h>

OutputCapture::OutputCapture(Stream stream) : stream_(stream)
{
    std::fflush(nullptr);
    std::cout.flush();
    saved_ = dup(stream_);
    file_ = memfd_create("captured-output", MFD_CLOEXEC);
    dup2(file_, stream_);
}

OutputCapture::~OutputCapture()
{
    restore();
}

std::string OutputCapture::text()
{
    restore();
    std::string result;
    char buffer[4096];
    lseek(file_, 0, SEEK_SET);
    for (ssize_t count; (count = read(file_, buffer, sizeof buffer)) > 0;)
        result.append(buffer, static_cast<std::size_t>(count));
    close(file_);
    file_ = -1;
    return result;
}

void OutputCapture::restore()
{
    if (saved_ < 0)
        return;
    std::fflush(nullptr);
    std::cout.flush();
    dup2(saved_, stream_);
    close(saved_);
    saved_ = -1;
}
