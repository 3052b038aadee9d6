#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Files/iFile.h>

/// A completion port. It carries no completions: it only lets a thread block until another one ends
/// that. Every operation may be called from any thread.
class OS_API iIOCompletionPort : public iObject
{
public:
    /// The two words that getStatus returns.
    struct Status
    {
        unsigned int code_;
        unsigned int value_;
    };

    /// Blocks until terminate() was called; looks once a second.
    ///
    /// @return always {2, 0}
    virtual Status getStatus() const = 0;
    /// Lets every getStatus() return, for good.
    virtual void terminate() const = 0;
    /// Not supported. @return false; no reference is kept
    virtual bool attach(Tq::Ptr<iFile> file) = 0;
};
