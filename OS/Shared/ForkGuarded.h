#pragma once

#include "OS/Mac/Threads/CriticalSection.h"

namespace Tq {

/// A heap whose locks are taken around fork(), so that the child finds it whole.
///
/// Every heap is enrolled while it lives. Before a fork, all of them are locked; the parent unlocks
/// them again, and the child, where only the forking thread is left, starts with fresh locks. No
/// heap's lock is ever held while another heap's is taken, so the order among heaps is free.
class ForkGuarded
{
public:
    ForkGuarded() = default;
    ForkGuarded(const ForkGuarded&) = delete;
    ForkGuarded& operator=(const ForkGuarded&) = delete;

    virtual void lockForFork() = 0;
    virtual void unlockAfterFork() = 0;
    virtual void renewInChild() = 0;

protected:
    ~ForkGuarded() = default;

    /// When all is made; and before anything is destroyed.
    void enrol();
    void withdraw();

private:
    friend struct ForkHandlers;
    ForkGuarded* next_ = nullptr;
    ForkGuarded* previous_ = nullptr;
};

/// Takes a lock without the check of its order: before a fork all are held at once.
void lockForFork(OSInternal::CriticalSection& section);

/// Makes a lock anew that the parent's thread holds: the system's recursive mutex knows its owner
/// by the number of a thread that the child does not have.
void renewInChild(OSInternal::CriticalSection& section, OSInternal::LockRank rank);

} // namespace Tq
