#pragma once

#include "OS/Shared/GuardedArea.h"

#include <string>
#include <vector>

namespace Tq {

/// A report of the debug heap: put together, then printed on standard output with one call.
class DebugHeapReport
{
public:
    ~DebugHeapReport();

    [[gnu::format(printf, 2, 3)]] void line(const char* format, ...);
    void stack(const char* title, const CallStack& stack);

private:
    std::string text_;
};

/// Prints blocks, those of one stack together, most bytes first.
/// @param notGuarded how many more there are, of which nothing else is known
void reportLeaks(std::vector<BlockFacts>& blocks, std::size_t notGuarded);

} // namespace Tq
