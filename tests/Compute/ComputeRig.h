#pragma once

#include "OpenGL/ImageRig.h"
#include "support/ComputeLayer/ComputeLayer.h"
#include "support/FreshProcess.h"
#include "support/OutputCapture.h"

#include "OS/Mac/Compute/OpenCLContext.h"

#include <array>
#include <gmock/gmock.h>
#include <string>
#include <vector>

/// Tests of compute, on a runtime behind the layer or, without OPENCL_LAYERS, on what GPU there is.
/// What a test made must be released at its end: the layer counts.
class ComputeTest : public ::testing::Test
{
protected:
    ComputeTest();
    ~ComputeTest() override;

    /// Null without the layer; see NEEDS_LAYER.
    ComputeLayer* const layer_ = ComputeLayer::instance();
    /// Programs that did not compile stay.
    int programsThatStay_ = 0;

    /// How often the layer has seen a call, with what is remarked of it.
    long seen(const std::string& call) const;

private:
    std::array<int, ComputeLayer::eKinds> before_{};
};

/// With GL started: contexts share with it.
class SharingTest : public ComputeTest
{
protected:
    SharingTest() { OpenGLUtils::instance(); }
    void SetUp() override
    {
        if (!OpenGLUtils::isInitialised())
            GTEST_SKIP() << "no GL here";
        OpenGLTextureCache::instance().clear();
    }
    ~SharingTest() override { OpenGLTextureCache::instance().clear(); }
};

#define NEEDS_LAYER()                                                                              \
    if (!layer_)                                                                                   \
    GTEST_SKIP() << "a real driver cannot be told to fail"

/// Declares a context, or ends the test: it fails behind the layer, and is skipped elsewhere.
#define MAKE_CONTEXT(name)                                                                         \
    const Tq::Ptr<iOpenCLContext> name = OpenCLContext::make();                                    \
    if (!name && !layer_)                                                                          \
        GTEST_SKIP() << "no GPU for compute";                                                      \
    ASSERT_TRUE(name)

using Lines = std::vector<LightweightString<char>>;

/// A program of one kernel, or null.
Tq::Ptr<iGPUProgramKernel> compile(iGPUComputeContext& context, const Lines& lines);

/// `void fill(global float* out, float first, short n)`: first, first + 1, ...
extern const Lines kFill;
/// `void swap(read_only image2d_t in, write_only image2d_t out, float red)`: multiplies red, and
/// writes by MAKEPIXEL.
extern const Lines kSwap;

/// What is in a buffer.
std::vector<float> floatsIn(const Tq::Ptr<iGPUBuffer>& buffer, std::size_t count);

/// What is printed, without the seconds that begin a timed line.
template <class Code>
std::string linesOf(Code code)
{
    std::string text = outputOf(code);
    for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1)
        if (text[start] >= '0' && text[start] <= '9')
            text.erase(start, text.find(": ", start) + 2 - start);
    return text;
}
