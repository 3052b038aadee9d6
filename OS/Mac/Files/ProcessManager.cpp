#include "OS/Mac/Files/ProcessManager.h"

#include <unistd.h>

Tq::Ptr<iProcess> ProcessManager::start(const InitArgs&)
{
    return {};
}
unsigned int ProcessManager::getCurrentProcessID()
{
    return static_cast<unsigned int>(getpid());
}
