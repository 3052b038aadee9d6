#pragma once

#include <OS/Core/iObject.h>

/// The base of every image, in main memory or on the GPU: what a description can hold.
class OS_API iImageBase : public virtual iObject
{
public:
    ~iImageBase() override = default;
};
