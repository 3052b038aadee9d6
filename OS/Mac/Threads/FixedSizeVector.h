#pragma once

#include <array>
#include <cstdint>

/// At most N elements in order, without allocation. Going beyond is the caller's to prevent.
template <class T, std::uint32_t N>
class FixedSizeVector
{
    static_assert(N <= 255, "remove() scans with an 8-bit index");

public:
    std::uint32_t size() const { return count_; }
    bool full() const { return count_ == N; }
    void push_back(const T& element) { elements_[count_++] = element; }

    /// Takes the first element equal to x out, keeping the order; nothing when there is none.
    void remove(const T& x)
    {
        std::uint8_t i = 0;
        while (i < count_ && !(elements_[i] == x))
            ++i;
        if (i == count_)
            return;
        --count_;
        for (; i < count_; ++i)
            elements_[i] = elements_[i + 1u];
    }

    T* begin() { return elements_.data(); }
    T* end() { return elements_.data() + count_; }
    const T* begin() const { return elements_.data(); }
    const T* end() const { return elements_.data() + count_; }

private:
    std::array<T, N> elements_;
    std::uint32_t count_ = 0;
};
