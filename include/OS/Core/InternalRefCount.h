#pragma once

#include <OS/Core/Export.h>

namespace Tq {

/// The reference count that a shared object carries inside itself: 0 until the first Tq::Ptr.
///
/// Copying an object copies its count with the rest; only the drawing descriptions, which are plain
/// values and never held by Tq::Ptr, rely on that.
class OS_API InternalRefCount
{
public:
    InternalRefCount() noexcept : refCount_(0) {}
    InternalRefCount(const InternalRefCount&) noexcept = default;
    InternalRefCount& operator=(const InternalRefCount&) noexcept = default;
    virtual ~InternalRefCount() = default;

    /// The count's address, for Tq::Ptr and for tests; clients never write it.
    volatile int* refCount() const noexcept { return &refCount_; }

private:
    mutable int refCount_;
};

} // namespace Tq
