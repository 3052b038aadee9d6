#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Threads/iCriticalSection.h>

#include <utility>

/// Holds a critical section, and a share of it, for the life of a scope.
///
/// An exception from unlock() ends the process.
class [[nodiscard]] CriticalSectionLock
{
public:
    /// @param section not null; locked before the constructor returns
    explicit CriticalSectionLock(Tq::Ptr<iCriticalSection> section) : section_(std::move(section))
    {
        section_->lock();
    }
    ~CriticalSectionLock() { section_->unlock(); }

    CriticalSectionLock(const CriticalSectionLock&) = delete;
    CriticalSectionLock& operator=(const CriticalSectionLock&) = delete;

private:
    Tq::Ptr<iCriticalSection> section_;
};
