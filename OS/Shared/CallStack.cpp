#include "OS/Shared/CallStack.h"

#include <algorithm>
#include <execinfo.h>

namespace Tq {

namespace {

constexpr int kOwnFrames = 2; // capture() and the function that called it

} // namespace

void CallStack::prepare()
{
    CallStack().capture();
}

void CallStack::capture()
{
    void* all[kMaxFrames + kOwnFrames];
    const int found = backtrace(all, kMaxFrames + kOwnFrames);
    count_ = std::max(0, found - kOwnFrames);
    std::copy_n(all + kOwnFrames, count_, frames_);
}

bool operator==(const CallStack& a, const CallStack& b)
{
    return std::equal(a.frames_, a.frames_ + a.count_, b.frames_, b.frames_ + b.count_);
}

bool operator<(const CallStack& a, const CallStack& b)
{
    return std::lexicographical_compare(a.frames_, a.frames_ + a.count_, b.frames_,
                                        b.frames_ + b.count_);
}

} // namespace Tq
