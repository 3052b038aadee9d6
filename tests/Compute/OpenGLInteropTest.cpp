#include "Compute/ComputeRig.h"

#include "OS/Mac/OpenGL/Contexts/GL.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <thread>

namespace {

using F = iGPUImage;
using OpenGLInteropTest = SharingTest;

// A kernel of kSwap set to read one image and write another.
bool set(iGPUProgramKernel& kernel, const Tq::Ptr<iGPUBuffer>& in, const Tq::Ptr<iGPUBuffer>& out,
         float red = 1.0f)
{
    return kernel.setArg(0, in) && kernel.setArg(1, out) && kernel.setArg(2, red);
}

Tq::Ptr<OpenGLImage> filled(const XY<int>& size, unsigned int argb)
{
    const auto image = makeImage(size);
    const auto channel = [&](int shift) { return static_cast<float>(argb >> shift & 255u) / 255; };
    clear(*image, {channel(16), channel(8), channel(0), channel(24)});
    return image;
}

void expectAll(const Tq::Ptr<OpenGLImage>& image, unsigned int argb)
{
    const QImage pixels = textureOf(image);
    for (int y = 0; y < pixels.height(); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            ASSERT_EQ(pixels.pixel(x, y), argb) << x << ", " << y;
}

} // namespace

TEST_F(OpenGLInteropTest, KernelsReadAndWriteWhatGLDraws)
{
    MAKE_CONTEXT(context);
    const auto kernel = compile(*context, kSwap);
    ASSERT_TRUE(kernel);
    const XY<int> size{100, 60};
    const auto in = filled(size, 0xFF4080C0), out = makeImage(size);
    const auto from = context->createBuffer(in), to = context->createBuffer(out);
    ASSERT_TRUE(from && to);
    ASSERT_TRUE(set(*kernel, from, to, 0.5f) && kernel->execute2D(100, 60));
    expectAll(out, 0xFFC08020); // blue stored first: red and blue change places

    // Drawn anew, without waiting; and on a thread of its own.
    clear(*in, {0, 1, 0});
    ASSERT_TRUE(set(*kernel, from, to) && kernel->execute2D(100, 60));
    expectAll(out, 0xFF00FF00);
    clear(*in, {0, 0, 1});
    std::thread([&] { EXPECT_TRUE(set(*kernel, from, to) && kernel->execute2D(100, 60)); }).join();
    expectAll(out, 0xFFFF0000);
}

TEST_F(OpenGLInteropTest, AnImageBecomesABufferOnce)
{
    MAKE_CONTEXT(context);
    auto image = makeImage({40, 40});
    auto buffer = context->createBuffer(image);
    ASSERT_TRUE(buffer);
    EXPECT_EQ(context->createBuffer(image), buffer);
    EXPECT_FALSE(buffer->copyToHost());

    image.reset();
    image = makeImage({40, 40});
    EXPECT_EQ(context->createBuffer(image), buffer) << "it came with the texture";
    EXPECT_NE(context->createBuffer(makeImage({40, 40})), buffer);
    {
        MAKE_CONTEXT(other);
        const auto others = other->createBuffer(image);
        EXPECT_TRUE(others && others != buffer) << "buffers serve the context they are of";
        EXPECT_EQ(other->createBuffer(image), others);
    }
    buffer.reset();
    image.reset();
    OpenGLTextureCache::instance().clear();
    if (layer_) {
        EXPECT_EQ(seen("clReleaseMemObject after its texture"), 0);
    }
}

TEST_F(OpenGLInteropTest, WhatIsNoImageOfOursGivesNoBuffer)
{
    MAKE_CONTEXT(context);
    class Foreign final : public iGPUImage
    {
        XY<int> getSize() const override { return {4, 4}; }
        int getBitsPerPixel() const override { return 32; }
        Tq::Ptr<iGraphicPrimitivesRenderer> getPrimitivesRenderer(bool) override { return {}; }
        Tq::Ptr<iImage> createCompatibleImage(const XY<int>&) const override { return {}; }
        eFormat getFormat() const override { return eARGB8; }
    };
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(context->createBuffer(Tq::Ptr<iGPUImage>(new Foreign)));
                  EXPECT_FALSE(context->createBuffer(Tq::Ptr<iGPUImage>()));
              }),
              "");
    const Tq::Ptr<iGPUImage> textureless(new OpenGLImage({-1, 4}, F::eARGB8));
    EXPECT_THAT(
        outputOf([&] { EXPECT_FALSE(context->createBuffer(textureless)); }),
        ::testing::MatchesRegex("OpenGLInterop::createBuffer\\(\\) : clCreateFromGLTexture2D\\(\\) "
                                "failed \\(-[0-9]+\\)\n"));
}

TEST_F(OpenGLInteropTest, ImagesOfEveryFormatAreSharedOrRefusedWithALine)
{
    MAKE_CONTEXT(context);
    const auto kernel = compile(*context, kSwap);
    ASSERT_TRUE(kernel);
    const Tq::Ptr<iHostImage> picture = noise({64, 32});
    for (int format = F::eRGB8; format <= F::eVYUY; ++format) {
        const Tq::Ptr<OpenGLImage> in(new OpenGLImage(picture, static_cast<F::eFormat>(format)));
        const auto between = makeImage({64, 32}, in->getFormat());
        const auto out = makeImage({64, 32}, in->getFormat());
        Tq::Ptr<iGPUBuffer> buffers[3];
        const std::string lines = outputOf([&] {
            buffers[0] = context->createBuffer(in);
            buffers[1] = context->createBuffer(between);
            buffers[2] = context->createBuffer(out);
        });
        EXPECT_EQ(lines.empty(), buffers[0] && buffers[1] && buffers[2]) << format;
        if (layer_) {
            EXPECT_EQ(buffers[0] != nullptr, format != F::eARGB2101010) << format;
        }
        if (!buffers[0])
            continue;
        const XY<int> texels = in->getPhysicalSize();
        for (int i = 0; i < 2; ++i) // twice changed, red and blue are back
            ASSERT_TRUE(set(*kernel, buffers[i], buffers[i + 1]) &&
                        kernel->execute2D(static_cast<unsigned int>(texels.x),
                                          static_cast<unsigned int>(texels.y)));
        EXPECT_EQ(textureOf(out), textureOf(in)) << format;
    }
}

TEST_F(OpenGLInteropTest, OnlyWhatIsOfGLIsAcquiredAndOnlyOnce)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    const auto kernel =
        compile(*context, {"kernel void f(read_only image2d_t a, write_only image2d_t b,"
                           " global int* c, float d) { *c = get_image_width(a); }"});
    const auto in = makeImage({20, 20}), out = makeImage({20, 20});
    const auto plain = context->createBuffer(4);
    ASSERT_TRUE(kernel && kernel->setArg(0, context->createBuffer(in)) &&
                kernel->setArg(0, context->createBuffer(in)) &&
                kernel->setArg(1, context->createBuffer(out)) && kernel->setArg(2, plain) &&
                kernel->setArg(3, 0.0f));
    EXPECT_TRUE(kernel->execute2D(1, 1));
    EXPECT_EQ(seen("clEnqueueAcquireGLObjects 2"), 1);
    EXPECT_EQ(seen("clEnqueueReleaseGLObjects 2"), 1);
    EXPECT_EQ(static_cast<int>(*plain->copyToHost()), 20);

    EXPECT_TRUE(kernel->execute2D(1, 1));
    EXPECT_TRUE(kernel->setArg(2, plain) && kernel->execute2D(1, 1));
    EXPECT_EQ(seen("clEnqueueAcquireGLObjects 2"), 1) << "images must be set for each execution";
    EXPECT_EQ(outputOf([&] { context->prepareBuffers({}, 200); }), "") << "never past the places";
}

TEST_F(OpenGLInteropTest, GLIsFinishedBeforeAndTheQueueAfterUnlessTheDeviceOrdersThem)
{
    NEEDS_LAYER();
    for (const bool orders : {false, true}) {
        layer_->setDevices({{.ordersWithGL = orders}});
        MAKE_CONTEXT(context);
        const auto kernel = compile(*context, kSwap);
        const auto in = makeImage({20, 20}), out = makeImage({20, 20});
        ASSERT_TRUE(kernel && set(*kernel, context->createBuffer(in), context->createBuffer(out)));
        layer_->reset();
        EXPECT_TRUE(kernel->execute2D(20, 20));
        std::string order;
        for (const std::string& call : layer_->calls())
            if (call.rfind("clGet", 0) != 0)
                order += call + '\n';
        EXPECT_EQ(order, std::string("glFinish\n"
                                     "clEnqueueAcquireGLObjects 2\n"
                                     "clEnqueueNDRangeKernel 32/16 32/16\n"
                                     "clEnqueueReleaseGLObjects 2\n") +
                             (orders ? "clFlush\n" : "clFinish\n") + "clFlush\n");
    }
}

TEST_F(OpenGLInteropTest, ABufferSurvivesItsImageAndItsTexture)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    const auto kernel = compile(*context, kSwap);
    const auto out = filled({16, 16}, 0xFF102030);
    auto in = filled({16, 16}, 0xFF00FF00);
    auto buffer = context->createBuffer(in);
    ASSERT_TRUE(kernel && set(*kernel, buffer, context->createBuffer(out)));
    in.reset(); // between setting and executing: the texture waits in the cache
    EXPECT_TRUE(kernel->execute2D(16, 16));
    expectAll(out, 0xFF00FF00);

    ASSERT_TRUE(set(*kernel, buffer, context->createBuffer(out)));
    OpenGLTextureCache::instance().clear(); // the texture goes
    EXPECT_EQ(outputOf([&] { EXPECT_TRUE(kernel->execute2D(16, 16)); }),
              "OpenGLInterop::prepareBuffers() : acquire failed (-60)\n");
    EXPECT_EQ(outputOf([&] { buffer.reset(); }), "");
}

TEST_F(OpenGLInteropTest, TheWholePathGoesThroughThePublicInterfaces)
{
    if (layer_ == nullptr && !OpenCLContext::make())
        GTEST_SKIP() << "no GPU for compute";
    iMediaServices* const media = OS()->mediaServices();
    const auto context = media->createGPUComputeContext(iGPUComputeContext::eOpenCL);
    ASSERT_TRUE(context);
    const auto in = media->copyToGPU(noise({300, 200}), F::eARGB8);
    const auto out = media->createGPUSurface({300, 200}, F::eARGB8);
    const auto kernel = compile(*context, kSwap);
    ASSERT_TRUE(kernel && set(*kernel, context->createBuffer(in), context->createBuffer(out)));
    ASSERT_TRUE(kernel->execute2D(300, 200));
    EXPECT_EQ(pixelsOf(media->copyToHost(out)), pixelsOf(noise({300, 200})).rgbSwapped());
}
