#pragma once

#include <OS/Core/iThreadAtomics.h>

/// iThreadAtomics by the compiler's sequentially consistent built-ins. No state.
class ThreadAtomics final : public iThreadAtomics
{
public:
    int safeInc(volatile int* value) override;
    int safeDec(volatile int* value) override;
    long long safeAssign(volatile long long* location, long long value) override;
    int safeAssign(volatile int* location, int value) override;
    int safeAdd(volatile int* location, int n) override;
    long long safeCompareExchange(volatile long long* location, long long exchange,
                                  long long comparand) override;
    int safeCompareExchange(volatile int* location, int exchange, int comparand) override;
};
