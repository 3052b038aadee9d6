#include "OpenGL/ImageRig.h"
#include "support/FreshProcess.h"
#include "support/OutputCapture.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLRenderContext.h"
#include "OS/Mac/OpenGL/Images/PixelPacking.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/OpenGL/iVideoWindowBackBuffer.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <algorithm>
#include <cstring>
#include <thread>

// What the application makes on the GPU: OS()->mediaServices(), where there is a display.

namespace {

using F = iGPUImage;
using GPUFactoriesTest = GPUImageTest;

iMediaServices* media()
{
    return OS()->mediaServices();
}

// Nothing that can be read back.
class BackBuffer final : public iVideoWindowBackBuffer
{
public:
    XY<int> getSize() const override { return {4, 4}; }
    int getBitsPerPixel() const override { return 32; }
    Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool) override { return {}; }
    Tq::Ptr<iImage> createCompatibleImage(const XY<int>&) const override { return {}; }
    eFormat getFormat() const override { return eARGB8; }
};

} // namespace

TEST_F(GPUFactoriesTest, PicturesGoThereAndComeBack)
{
    const Tq::Ptr<iHostImage> host = noise({37, 11});
    const Tq::Ptr<iGPUImage> image = media()->copyToGPU(host, F::eARGB8);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->getSize(), (XY<int>{37, 11}));
    EXPECT_EQ(pixelsOf(media()->copyToHost(image)), pixelsOf(host));

    const Tq::Ptr<iGPUImage> surface = media()->createGPUSurface({1920, 2}, F::eRGB8);
    ASSERT_TRUE(surface);
    EXPECT_EQ(media()->copyToHost(surface)->getSize(), (XY<int>{1440, 2}));
}

TEST_F(GPUFactoriesTest, AnswerNullToWhatCannotBe)
{
    EXPECT_FALSE(media()->createGPUSurface({0, 4}, F::eARGB8));
    EXPECT_FALSE(media()->createGPUSurface({1 << 20, 4}, F::eARGB8));
    EXPECT_FALSE(media()->copyToGPU(nullptr, F::eARGB8));
    const int tooWide = OpenGLUtils::getMaxTextureSize().x + 1;
    for (const auto format : {F::eARGB8, F::eARGB16}) {
        EXPECT_FALSE(media()->copyToGPU(noise({tooWide, 1}), format));
        EXPECT_FALSE(
            media()->copyToGPU(media()->createGPUReadySurface({tooWide, 1}, format), format));
    }
    EXPECT_FALSE(media()->copyToHost(Tq::Ptr<iGPUImage>()));
    EXPECT_FALSE(media()->copyToHost(Tq::Ptr<iGPUImage>(new BackBuffer)));
    EXPECT_FALSE(media()->createGPUImage3D(nullptr));
    EXPECT_FALSE(media()->copyToHost(Tq::Ptr<iGPUImage3D>()));
    EXPECT_EQ(
        outputOf([] {
            const Tq::Ptr<iHostImage> none(new QtImage({0, 0}, QtImage::getDefaultFormat(), 1));
            EXPECT_FALSE(media()->copyToGPU(none, F::eARGB8));
        }),
        "assertion failed imageLock at OS/Mac/OpenGLImage line 34\n");
    EXPECT_EQ(outputOf([] {
                  EXPECT_FALSE(media()->copyToGPU(noise({1, 4}), F::eUYVY));
              }),
              "assertion failed impl_->isValid() at OS/Mac/OpenGLImage line 121\n");
    Tq::Ptr<iGPUImage> negative;
    outputOf([&] { negative = media()->createGPUSurface({-5, 4}, F::eARGB8); });
    ASSERT_TRUE(negative) << "deliberately";
    EXPECT_FALSE(media()->copyToHost(negative));
}

TEST_F(GPUFactoriesTest, ReadySurfacesAreUploadedAsTheyAre)
{
    for (int value = 0; value < 13; ++value) {
        const auto format = static_cast<iGPUImage::eFormat>(value);
        const Tq::Ptr<iHostImage> surface = media()->createGPUReadySurface({12, 3}, format);
        ASSERT_TRUE(surface) << value;
        const PixelPacking packing(format);
        {
            const Tq::Ptr<iPixelGuard> guard = surface->lock();
            EXPECT_EQ(guard->getSize(), (XY<int>{12, 3}));
            ASSERT_EQ(guard->getStride(), static_cast<int>(packing.rowBytes(12))) << value;
            for (int i = 0; i < guard->getStride() * 3; ++i)
                guard->getPixels()[i] = static_cast<std::uint8_t>(i * 7 | (i % 4 == 3 ? 255 : 0));
        }
        const Tq::Ptr<iGPUImage> image = media()->copyToGPU(surface, format);
        ASSERT_TRUE(image);
        EXPECT_EQ(image->getSize(), (XY<int>{12, 3}));
        if (packing.bitsPerPixel() >= 48)
            continue; // read back narrowed
        const QImage back = pixelsOf(media()->copyToHost(image));
        EXPECT_EQ(std::memcmp(back.constBits(), surface->lock()->getPixels(),
                              static_cast<std::size_t>(back.sizeInBytes())),
                  0)
            << value;
    }
}

TEST_F(GPUFactoriesTest, ReadySurfacesOfAnotherFormatAreConverted)
{
    const Tq::Ptr<iHostImage> video = media()->createGPUReadySurface({8, 2}, F::eUYVY);
    const std::uint8_t red[] = {102, 63, 240, 63};
    for (int i = 0; i < 8 * 2 * 2; ++i)
        video->lock()->getPixels()[i] = red[i % 4];
    const QImage back = pixelsOf(media()->copyToHost(media()->copyToGPU(video, F::eARGB8)));
    ASSERT_EQ(back.size(), QSize(8, 2));
    const QRgb pixel = back.pixel(7, 1);
    EXPECT_GE(qRed(pixel), 252);
    EXPECT_LE(qGreen(pixel) + qBlue(pixel), 6);
    EXPECT_EQ(qAlpha(pixel), 255);
}

TEST_F(GPUFactoriesTest, ReadySurfacesStartBlackAndAreRefusedWhereTheyCannotBe)
{
    for (const auto format : {F::eRGB8, F::eYUV8, F::eYUV16, F::eVYUY, F::eARGB2101010}) {
        const Tq::Ptr<iHostImage> surface = media()->createGPUReadySurface({4, 2}, format);
        const QImage back = pixelsOf(media()->copyToHost(media()->copyToGPU(surface, F::eARGB8)));
        EXPECT_EQ(back.pixel(0, 0), 0xFF000000u) << format;
        EXPECT_FALSE(surface->getPrimitivesRenderer(true));
        EXPECT_NE(surface->getBitsPerPixel(), 32) << "nobody takes it for words";
        const auto other = surface->createCompatibleImage({6, 6});
        ASSERT_TRUE(other);
        EXPECT_EQ(other->getSize(), (XY<int>{6, 6}));
    }
    EXPECT_TRUE(media()->createGPUReadySurface({4, 2}, F::eARGB8)->getPrimitivesRenderer(true));
    for (const XY<int>& size : {XY<int>{0, 4}, {4, -1}, {1 << 30, 1 << 30}, {1, 4}})
        EXPECT_FALSE(media()->createGPUReadySurface(size, F::eYUY2));
    EXPECT_FALSE(media()->createGPUReadySurface({1 << 29, 1}, F::eARGB16)) << "no stride says that";
}

TEST_F(GPUFactoriesTest, CachesAreCleared)
{
    media()->createGPUSurface({50, 50}, F::eARGB8);
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 1u);
    media()->clearCaches();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u);
}

TEST_F(GPUFactoriesTest, LendTheGLLockAndResetTheContext)
{
    EXPECT_EQ(media()->getGPULock(), OpenGLUtils::instance().getLock());
    OpenGLRenderContext& context = OpenGLUtils::instance().getRenderContext();
    const OpenGLContextProtector protector(context);
    EXPECT_TRUE(OpenGLContextProtector::hasContext());
    media()->resetGPUContext();
    EXPECT_FALSE(OpenGLContextProtector::hasContext());
}

TEST(GPUFactories, StartGLByThemselvesOnTheApplicationsThread)
{
    if (runsInFreshProcess())
        return;
    EXPECT_EQ(
        outputOf([] {
            std::thread([] { EXPECT_FALSE(media()->createGPUSurface({4, 4}, F::eARGB8)); }).join();
        }),
        "AppStarter::start() : the Qt application must be made on the main thread\n"
        "OpenGLUtils::instance() : no Qt application for windows\n");
    EXPECT_TRUE(media()->createGPUSurface({4, 4}, F::eARGB8));
    std::thread([] { EXPECT_TRUE(media()->createGPUSurface({4, 4}, F::eARGB8)); }).join();
}

TEST(GPUFactories, NothingIsLeftAndNothingCrashesAfterShutdown)
{
    if (runsInFreshProcess())
        return;
    Tq::Ptr<iGPUImage> kept = media()->copyToGPU(noise({8, 8}), F::eARGB8);
    media()->createGPUSurface({9, 9}, F::eARGB8);
    OpenGLUtils::shutdown();
    EXPECT_EQ(OpenGLTextureCache::instance().size(), 0u);
    kept.reset();
    media()->createGPUSurface({8, 8}, F::eARGB8);
    media()->clearCaches();
    OpenGLUtils::shutdown();
}
