#include "OS/Mac/Threads/PthreadMutex.h"

#include <stdexcept>

namespace OSInternal {

void throwIfPthreadFailed(const char* place, int line, int error, const char* message)
{
    if (pthreadFailed(place, line, error))
        throw std::runtime_error(message);
}

PthreadMutexAttributes::~PthreadMutexAttributes()
{
    if (initialised_)
        destroy();
}

int PthreadMutexAttributes::initialise()
{
    const int error = pthread_mutexattr_init(&attributes_);
    initialised_ = error == 0;
    return error;
}

int PthreadMutexAttributes::setType(int type)
{
    return pthread_mutexattr_settype(&attributes_, type);
}

int PthreadMutexAttributes::destroy()
{
    initialised_ = false;
    return pthread_mutexattr_destroy(&attributes_);
}

PthreadMutex::~PthreadMutex()
{
    if (initialised_)
        destroy();
}

int PthreadMutex::initialise(const PthreadMutexAttributes& attributes)
{
    const int error = pthread_mutex_init(&mutex_, attributes.get());
    initialised_ = error == 0;
    return error;
}

int PthreadMutex::destroy()
{
    initialised_ = false;
    return pthread_mutex_destroy(&mutex_);
}

PthreadCondition::~PthreadCondition()
{
    if (initialised_)
        destroy();
}

int PthreadCondition::initialise()
{
    const int error = pthread_cond_init(&condition_, nullptr);
    initialised_ = error == 0;
    return error;
}

int PthreadCondition::destroy()
{
    initialised_ = false;
    return pthread_cond_destroy(&condition_);
}

} // namespace OSInternal
