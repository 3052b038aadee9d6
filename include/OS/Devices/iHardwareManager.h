#pragma once

#include <OS/Core/iObject.h>

/// Devices attached to the machine, reached as OS()->hardwareMgr().
class OS_API iHardwareManager : public iObject
{
};
