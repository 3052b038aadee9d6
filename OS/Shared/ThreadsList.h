#pragma once

#include <cstdint>

namespace Tq {

/// Which of the lists of every bin a thread keeps to: one that few other living threads have.
class ThreadsList
{
public:
    static constexpr std::uint32_t kCount = 8;

    /// @return kCount or more for a thread that has not called index() yet
    [[gnu::always_inline]] static std::uint32_t indexIfDealt() { return index_; }
    static std::uint32_t index() { return index_ < kCount ? index_ : deal(); }

private:
    static std::uint32_t deal();

    // At a fixed place in the thread's block, which a library loaded late gets only while all that
    // it keeps for a thread is small: tests/abi loads it late.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local std::uint32_t index_;
};

} // namespace Tq
