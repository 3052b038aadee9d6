#pragma once

#include <unistd.h>
#include <utility>

namespace OSInternal {

/// Owns a file descriptor; -1 is none.
class Descriptor
{
public:
    Descriptor() noexcept = default;
    explicit Descriptor(int descriptor) noexcept : descriptor_(descriptor) {}
    Descriptor(Descriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(descriptor_, other.descriptor_);
        other.reset();
        return *this;
    }
    ~Descriptor() { reset(); }

    int get() const noexcept { return descriptor_; }
    explicit operator bool() const noexcept { return descriptor_ >= 0; }
    int release() noexcept { return std::exchange(descriptor_, -1); }
    void reset() noexcept
    {
        if (descriptor_ >= 0)
            close(std::exchange(descriptor_, -1));
    }

private:
    int descriptor_ = -1;
};

} // namespace OSInternal
