#pragma once

#include <OS/Core/Export.h>

/// Network volumes, reached as OS()->mountMgr().
class OS_API iMountManager
{
public:
    virtual ~iMountManager() = default;
};
