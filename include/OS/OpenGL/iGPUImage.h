#pragma once

#include <OS/OpenGL/iGPUResource.h>
#include <OS/Painting/iImage.h>

/// An image on the GPU, which every GL context of the library can draw with.
///
/// Made by OS()->mediaServices(). Any thread may use it: each operation that needs GL takes the GL
/// lock, and makes the calling thread's own context current where none is.
class OS_API iGPUImage : public iImage, public iGPUResource
{
public:
    /// How pixels lie in the texture. Three components are packed four pixels into three texels;
    /// 4:2:2 holds two pixels in each texel. The width in texels is rounded down: pixels that do
    /// not fit are lost.
    enum eFormat : int
    {
        eRGB8 = 0,        ///< 24 bits: red, green, blue
        eRGB16 = 1,       ///< 48 bits: three components of 16
        eBGR8 = 2,        ///< 24 bits: blue, green, red
        eARGB8 = 3,       ///< 32 bits; of windows' back buffers, too
        eRGB32 = 4,       ///< 32 bits, without alpha
        eARGB16 = 5,      ///< 64 bits: four components of 16
        eARGB2101010 = 6, ///< 32 bits: ten for each colour, two of alpha
        eYUV8 = 7,        ///< 24 bits: 4:4:4
        eYUV16 = 8,       ///< 48 bits: 4:4:4
        eUYVY = 9,        ///< 16 bits: 4:2:2
        eYUY2 = 10,
        eYVYU = 11,
        eVYUY = 12
    };

    ~iGPUImage() override = default;

    eLocation getLocation() const override { return eOnGPU; }
    virtual eFormat getFormat() const = 0;
};
