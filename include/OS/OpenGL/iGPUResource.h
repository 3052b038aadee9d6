#pragma once

#include <OS/Core/iObject.h>

/// The base of everything that lives on the GPU.
class OS_API iGPUResource : public virtual iObject
{
public:
    ~iGPUResource() override = default;
};
