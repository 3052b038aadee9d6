#include "OS/Shared/DebugHeapReport.h"

#include "OS/Mac/Core/Stacktrace.h"

#include <OS/Core/LightweightString.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>

namespace Tq {

DebugHeapReport::~DebugHeapReport()
{
    std::fwrite(text_.data(), 1, text_.size(), stdout);
    std::fflush(stdout);
}

void DebugHeapReport::line(const char* format, ...)
{
    char buffer[256];
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    if (length > 0)
        text_.append(buffer, std::min(static_cast<std::size_t>(length), sizeof buffer - 1));
    text_ += '\n';
}

void DebugHeapReport::stack(const char* title, const CallStack& stack)
{
    line("  %s", title);
    std::vector<LightweightString<char>> names;
    Stacktrace::describe(stack.addresses(), stack.size(), names);
    for (const LightweightString<char>& name : names)
        text_.append("    ").append(name.c_str()).append("\n");
}

void reportLeaks(std::vector<BlockFacts>& blocks, std::size_t notGuarded)
{
    struct Group
    {
        std::size_t bytes = 0;
        std::size_t count = 0;
        const CallStack* stack = nullptr;
    };
    std::sort(blocks.begin(), blocks.end(),
              [](const BlockFacts& a, const BlockFacts& b) { return a.allocated < b.allocated; });
    std::vector<Group> groups;
    std::size_t total = 0;
    for (const BlockFacts& block : blocks) {
        if (groups.empty() || !(*groups.back().stack == block.allocated))
            groups.push_back({0, 0, &block.allocated});
        groups.back().bytes += block.size;
        ++groups.back().count;
        total += block.size;
    }
    std::stable_sort(groups.begin(), groups.end(),
                     [](const Group& a, const Group& b) { return a.bytes > b.bytes; });

    DebugHeapReport report;
    report.line("debug heap: %zu bytes in %zu live blocks", total, blocks.size());
    if (notGuarded > 0)
        report.line("debug heap: %zu more blocks are not guarded", notGuarded);
    for (const Group& group : groups) {
        report.line("debug heap: %zu bytes in %zu blocks", group.bytes, group.count);
        report.stack("allocated by", *group.stack);
    }
}

} // namespace Tq
