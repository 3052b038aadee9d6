#pragma once

#include <OS/Core/iObject.h>

/// What has a GL texture name.
class OS_API iOpenGLTexture : public virtual iObject
{
public:
    ~iOpenGLTexture() override = default;

    /// The name in the library's sharing group; 0 where there is no texture.
    virtual unsigned int getTextureID() const = 0;
};
