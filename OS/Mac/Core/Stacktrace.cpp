#include "OS/Mac/Core/Stacktrace.h"

#include <cstdio>
#include <cstdlib>
#include <cxxabi.h>
#include <execinfo.h>
#include <memory>

namespace {

constexpr int kMaxFrames = 25;
constexpr int kOwnFrames = 2;

struct Free
{
    void operator()(void* memory) const { std::free(memory); }
};

LightweightString<char> printable(const char* line)
{
    char mangled[128];
    if (std::sscanf(line, "%*[^(]%*[^_]%127[^)+]", mangled) != 1)
        return line;
    int status = 0;
    const std::unique_ptr<char, Free> name(abi::__cxa_demangle(mangled, nullptr, nullptr, &status));
    return status == 0 && name ? name.get() : line;
}

} // namespace

Stacktrace::Stacktrace()
{
    void* addresses[kMaxFrames];
    count_ = backtrace(addresses, kMaxFrames);
    symbols_ = backtrace_symbols(addresses, count_);
}

Stacktrace::~Stacktrace()
{
    std::free(symbols_);
}

void Stacktrace::getPrintableStrings(std::vector<LightweightString<char>>& lines) const
{
    for (int i = kOwnFrames; symbols_ && i < count_; ++i)
        lines.push_back(printable(symbols_[i]));
}

void Stacktrace::describe(void* const* addresses, int count,
                          std::vector<LightweightString<char>>& lines)
{
    const std::unique_ptr<char*, Free> symbols(backtrace_symbols(addresses, count));
    for (int i = 0; symbols && i < count; ++i)
        lines.push_back(printable(symbols.get()[i]));
}

void Stacktrace::get(std::vector<LightweightString<char>>& lines)
{
    Stacktrace().getPrintableStrings(lines);
}
