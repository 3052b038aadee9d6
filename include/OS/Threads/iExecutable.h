#pragma once

#include <OS/Core/iObject.h>

/// A piece of work, made by the application and run by a TaskQueue.
class OS_API iExecutable : public virtual iObject
{
public:
    /// Does the work, on the queue's worker thread. It must not throw: an exception ends the
    /// process.
    virtual void execute() = 0;
};
