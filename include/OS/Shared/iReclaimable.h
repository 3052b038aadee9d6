#pragma once

#include <OS/Core/Export.h>

/// A cache that holds memory it can drop; it registers with OS()->heap().
class OS_API iReclaimable
{
public:
    virtual ~iReclaimable() = default;
    /// Drops everything that can be made again.
    virtual void purge() = 0;
    /// Shrinks to the cache's own limit.
    virtual void limitUsage() = 0;
    /// Prints what the cache holds.
    virtual void reportUsage() = 0;
};
