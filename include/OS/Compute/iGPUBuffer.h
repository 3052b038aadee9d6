#pragma once

#include <OS/OpenGL/iGPUResource.h>

/// Memory of a GPU compute device, possibly that of a GL image.
class OS_API iGPUBuffer : public iGPUResource
{
public:
    ~iGPUBuffer() override = default;
};
