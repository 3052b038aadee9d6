#include "OpenGL/GLCalls.h"
#include "OpenGL/ImageRig.h"
#include "support/BackgroundThread.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Shared/iHeap.h>

#include <QGLFramebufferObject>

#include <atomic>
#include <iterator>
#include <thread>
#include <vector>

namespace {

using F = iGPUImage;
using TextureCacheTest = GPUImageTest;

OpenGLTextureCache& cache()
{
    return OpenGLTextureCache::instance();
}

// Leaves a texture of a size in the cache. @return its name
unsigned int leave(const XY<int>& size, iGPUImage::eFormat format = F::eARGB8)
{
    return makeImage(size, format)->getTextureID();
}

bool holds(const XY<int>& size, iGPUImage::eFormat format = F::eARGB8)
{
    const int before = GLCalls::texturesSpecified();
    const auto image = makeImage(size, format);
    return GLCalls::texturesSpecified() == before;
}

bool exists(unsigned int texture)
{
    const OpenGLContextProtector protector;
    return glIsTexture(texture) == GL_TRUE;
}

// Tells when it is destroyed.
class Buffer final : public iGPUBuffer
{
public:
    explicit Buffer(std::atomic<int>& destroyed) : destroyed_(destroyed) {}
    ~Buffer() override { ++destroyed_; }
    void acquire() override {}
    void release() override {}
    Tq::Ptr<unsigned char> copyToHost() const override { return {}; }

private:
    std::atomic<int>& destroyed_;
};

} // namespace

TEST_F(TextureCacheTest, OrdersByTypeThenWidthThenHeight)
{
    // Each below the next, though numbers of less weight say otherwise.
    const TextureDetails ascending[] = {{1, {-5, 900}}, {1, {5, 7}}, {1, {5, 9}},
                                        {1, {6, 1}},    {2, {1, 1}}, {2, {1, 2}}};
    for (std::size_t i = 0; i < std::size(ascending); ++i)
        for (std::size_t j = 0; j < std::size(ascending); ++j)
            EXPECT_EQ(ascending[i] < ascending[j], i < j) << i << " and " << j;
}

TEST_F(TextureCacheTest, HoldsElevenAndGivesTheSmallestUpFirst)
{
    // The smallest is neither the oldest nor the youngest.
    std::vector<unsigned int> names;
    for (int i = 0; i < 11; ++i)
        names.push_back(leave({(i + 5) % 11 + 20, 10}));
    EXPECT_EQ(cache().size(), 11u);
    const unsigned int smallest = names[6];
    EXPECT_TRUE(exists(smallest));

    leave({200, 10});
    EXPECT_EQ(cache().size(), 11u);
    EXPECT_FALSE(exists(smallest));
    for (std::size_t i = 0; i < names.size(); ++i)
        EXPECT_EQ(exists(names[i]), i != 6) << i;
}

TEST_F(TextureCacheTest, WhatComesInLastGoesNextWhereItIsTheSmallest)
{
    for (int i = 0; i < 11; ++i)
        leave({300 + i, 10});
    leave({8, 8});
    EXPECT_EQ(cache().size(), 11u) << "300 made room";
    leave({8, 4});
    EXPECT_EQ(cache().size(), 11u) << "8 x 8 made room, though it is the youngest";
    EXPECT_FALSE(holds({8, 8}));
    EXPECT_TRUE(holds({310, 10}));
}

TEST_F(TextureCacheTest, TypesOfWiderComponentsStayLonger)
{
    const unsigned int wide = leave({10, 10}, F::eARGB16);
    for (int i = 0; i < 12; ++i)
        leave({100 + i, 10});
    EXPECT_TRUE(exists(wide));
}

TEST_F(TextureCacheTest, LimitingRemovesOneFromElevenOn)
{
    for (int i = 0; i < 11; ++i)
        leave({100 + i, 10});
    cache().limitUsage();
    EXPECT_EQ(cache().size(), 10u);
    OS()->heap()->limitUsage();
    EXPECT_EQ(cache().size(), 10u) << "fewer than eleven are left alone";
}

TEST_F(TextureCacheTest, HandsOutOnlyTheSameStorage)
{
    leave({64, 64});
    EXPECT_FALSE(cache().extract(OpenGLImage::getStorageDetails({64, 63}, F::eARGB8)).framebuffer_);
    EXPECT_FALSE(
        cache().extract(OpenGLImage::getStorageDetails({64, 64}, F::eARGB16)).framebuffer_);
    EXPECT_EQ(cache().size(), 1u);
    EXPECT_TRUE(holds({86, 64}, F::eRGB8)) << "64 texels a row";
    {
        const auto value = cache().extract(OpenGLImage::getStorageDetails({64, 64}, F::eARGB8));
        EXPECT_TRUE(value.framebuffer_);
        EXPECT_EQ(cache().size(), 0u);
    }
}

TEST_F(TextureCacheTest, TheComputeBufferTravelsWithItsTexture)
{
    std::atomic<int> destroyed{0};
    auto image = makeImage({40, 40});
    Tq::Ptr<iGPUBuffer> buffer(new Buffer(destroyed));
    image->setBuffer(buffer);
    image.reset();
    image = makeImage({40, 40});
    EXPECT_EQ(image->buffer(), buffer);
    EXPECT_FALSE(makeImage({40, 40})->buffer());
    image.reset();
    buffer.reset();
    EXPECT_EQ(destroyed, 0);
    cache().clear();
    EXPECT_EQ(destroyed, 1);
}

TEST_F(TextureCacheTest, ReclaimingMemoryDeletesEveryTextureNow)
{
    std::vector<unsigned int> names;
    for (int i = 0; i < 5; ++i)
        names.push_back(leave({100 + i, 10}));
    const auto kept = makeImage({10, 10});
    std::thread([] { OS()->heap()->reclaim(); }).join();
    EXPECT_EQ(cache().size(), 0u);
    for (const unsigned int name : names)
        EXPECT_FALSE(exists(name));
    EXPECT_TRUE(exists(kept->getTextureID())) << "in use";
}

TEST_F(TextureCacheTest, ReclaimingInTheMiddleOfAFrameWaitsForItsEnd)
{
    leave({100, 10});
    const auto image = makeImage({10, 10});
    Tq::Ptr<iObject> frame = image->lock();
    BackgroundThread reclaiming([] { OS()->heap()->reclaim(); });
    EXPECT_TRUE(reclaiming.waitUntilBlocked());
    EXPECT_EQ(cache().size(), 0u) << "emptied at once; only the deletion waits";
    leave({100, 10});
    clear(*image, {0, 1, 0});
    frame.reset();
    reclaiming.join();
    EXPECT_EQ(textureOf(image).pixel(9, 9), 0xFF00FF00u);
    EXPECT_EQ(cache().size(), 1u);
}

TEST_F(TextureCacheTest, ManyThreadsTakeAndLeaveWhileMemoryIsReclaimed)
{
    std::atomic<bool> stop{false};
    std::thread reclaiming([&] {
        while (!stop)
            OS()->heap()->reclaim();
    });
    BackgroundThreads users(4, [] {
        for (int i = 0; i < 50; ++i) {
            const auto image = makeImage({16 + i % 3, 16});
            ASSERT_NE(image->getTextureID(), 0u);
        }
    });
    users.join();
    stop = true;
    reclaiming.join();
    EXPECT_LE(cache().size(), 12u);
}
