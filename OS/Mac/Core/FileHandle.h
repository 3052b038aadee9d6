#pragma once

#include <cstdio>
#include <memory>

namespace OSInternal {

struct FileCloser
{
    void operator()(std::FILE* file) const { std::fclose(file); }
};

/// Owns a stream of the C library.
using FileHandle = std::unique_ptr<std::FILE, FileCloser>;

} // namespace OSInternal
