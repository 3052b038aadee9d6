#include "OS/Mac/Core/ThreadAtomics.h"

namespace {

template <class T>
T compareExchange(volatile T* location, T exchange, T comparand)
{
    __atomic_compare_exchange_n(location, &comparand, exchange, false, __ATOMIC_SEQ_CST,
                                __ATOMIC_SEQ_CST);
    return comparand; // left alone by success, the value found by failure
}

} // namespace

int ThreadAtomics::safeInc(volatile int* value)
{
    return __atomic_add_fetch(value, 1, __ATOMIC_SEQ_CST);
}

int ThreadAtomics::safeDec(volatile int* value)
{
    return __atomic_sub_fetch(value, 1, __ATOMIC_SEQ_CST);
}

long long ThreadAtomics::safeAssign(volatile long long* location, long long value)
{
    return __atomic_exchange_n(location, value, __ATOMIC_SEQ_CST);
}

int ThreadAtomics::safeAssign(volatile int* location, int value)
{
    return __atomic_exchange_n(location, value, __ATOMIC_SEQ_CST);
}

int ThreadAtomics::safeAdd(volatile int* location, int n)
{
    return __atomic_add_fetch(location, n, __ATOMIC_SEQ_CST);
}

long long ThreadAtomics::safeCompareExchange(volatile long long* location, long long exchange,
                                             long long comparand)
{
    return compareExchange(location, exchange, comparand);
}

int ThreadAtomics::safeCompareExchange(volatile int* location, int exchange, int comparand)
{
    return compareExchange(location, exchange, comparand);
}
