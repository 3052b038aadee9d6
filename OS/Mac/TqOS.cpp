#include "OS/Mac/TqOS.h"

#include <OS/Core/LightweightString.h>

#include <clocale>
#include <cstdlib>
#include <new>
#include <pthread.h>

TqOS::TqOS()
{
    heap_.useDebugHeapIfAsked();
    std::setlocale(LC_NUMERIC, "C");
    pthread_setname_np(pthread_self(), "Main thread");
}

namespace {

// Straight from the C allocator: operator new comes through the root itself.
TqOS* makeRoot()
{
    void* storage = std::malloc(sizeof(TqOS));
    if (!storage)
        throw std::bad_alloc();
    try {
        return new (storage) TqOS;
    } catch (...) {
        std::free(storage);
        throw;
    }
}

} // namespace

iOperatingSystem* OS()
{
    static TqOS* const root = makeRoot();
    return root;
}

namespace Tq::detail {

iThreadAtomics* threadAtomics()
{
    return OS()->threadAtomics();
}

iHeap* heap()
{
    return OS()->heap();
}

} // namespace Tq::detail
