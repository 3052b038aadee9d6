#pragma once

namespace Tq {

/// The return addresses of a call: cheap to take and to keep, named only when somebody asks.
class CallStack
{
public:
    static constexpr int kMaxFrames = 24;

    /// Makes the first capture, for which the system loads a library. Call it once, early.
    static void prepare();

    /// Takes the stack of the calling function's caller. Allocates nothing after prepare().
    [[gnu::noinline]] void capture();

    int size() const { return count_; }
    void* const* addresses() const { return frames_; }

    friend bool operator==(const CallStack& a, const CallStack& b);
    /// An order without a meaning, to bring equal stacks together.
    friend bool operator<(const CallStack& a, const CallStack& b);

private:
    int count_ = 0;
    void* frames_[kMaxFrames] = {};
};

} // namespace Tq
