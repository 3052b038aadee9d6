#pragma once

#include <OS/OpenGL/iGPUResource.h>
#include <OS/Primitives/XYZ.h>

/// A cube of colours on the GPU: a 3D texture.
class OS_API iGPUImage3D : public iGPUResource
{
public:
    ~iGPUImage3D() override = default;

    virtual XYZ<unsigned char> getLogicalSize() const = 0;
    virtual XYZ<unsigned char> getPhysicalSize() const = 0;
    /// The name in the library's sharing group.
    virtual unsigned int getTextureID() const = 0;
};
