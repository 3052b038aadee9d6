#pragma once

#include <OS/Core/iObject.h>

/// Child processes, reached as OS()->processMgr().
class OS_API iProcessManager : public iObject
{
};
