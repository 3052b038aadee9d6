#pragma once

#include <OS/Core/Export.h>

/// Atomic operations on plain integers, reached as OS()->threadAtomics().
///
/// Every operation is one locked instruction with full-barrier semantics and may be called from any
/// thread at any time, inside `operator new` too. Reference counts change only through these. For
/// new code inside one class std::atomic reads better; use this where an integer is shared across
/// the library's boundary.
///
/// No operation checks for null: the location must exist and be naturally aligned.
class OS_API iThreadAtomics
{
public:
    virtual ~iThreadAtomics() = default;

    /// Adds 1. @return the new value
    virtual int safeInc(volatile int* value) = 0;
    /// Subtracts 1. @return the new value
    virtual int safeDec(volatile int* value) = 0;
    /// Stores a value. @return the previous value
    virtual long long safeAssign(volatile long long* location, long long value) = 0;
    /// Stores a value. @return the previous value
    virtual int safeAssign(volatile int* location, int value) = 0;
    /// Adds n. @return the new value
    virtual int safeAdd(volatile int* location, int n) = 0;

    /// Stores `exchange` if the location holds `comparand`.
    ///
    /// Note the order of the arguments: the new value comes before the comparand.
    /// @return the value found before; the store happened exactly when it equals `comparand`
    virtual long long safeCompareExchange(volatile long long* location, long long exchange,
                                          long long comparand) = 0;
    /// As above, for 32 bits.
    virtual int safeCompareExchange(volatile int* location, int exchange, int comparand) = 0;
};
