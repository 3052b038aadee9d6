#pragma once

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"
#include "OS/Mac/OpenGL/Images/OpenGLImage.h"
#include "OS/Mac/OpenGL/Images/OpenGLTextureCache.h"
#include "OS/Mac/Painting/QtImage.h"

#include <OS/Primitives/NormalisedRGB.h>

#include <QImage>
#include <gtest/gtest.h>

/// Tests of GPU images: GL is started, and no texture waits for reuse.
class GPUImageTest : public ::testing::Test
{
protected:
    GPUImageTest()
    {
        OpenGLUtils::instance();
        OpenGLTextureCache::instance().clear();
    }
    void SetUp() override { ASSERT_TRUE(OpenGLUtils::isInitialised()); }
};

/// A host image of random premultiplied pixels, the same for the same seed.
Tq::Ptr<iHostImage> noise(const XY<int>& size, unsigned int seed = 1);

/// A host image's pixels, copied.
QImage pixelsOf(const Tq::Ptr<iHostImage>& image);

/// What lies in an image's texture, as 32-bit pixels.
QImage textureOf(const Tq::Ptr<OpenGLImage>& image);

/// Gives all of an image one colour, by GL alone.
void clear(OpenGLImage& image, const NormalisedRGB& colour);

inline Tq::Ptr<OpenGLImage> makeImage(const XY<int>& size,
                                      iGPUImage::eFormat format = iGPUImage::eARGB8)
{
    return OpenGLImage::create(size, format).dynamicCast<OpenGLImage>();
}
