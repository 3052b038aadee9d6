#include "Compute/ComputeRig.h"

#include <algorithm>

namespace {

using ComputeFailuresTest = SharingTest;

// All that a client does, as far as it gets.
void workThrough()
{
    const Tq::Ptr<iOpenCLContext> context = OpenCLContext::make();
    if (!context)
        return;
    const auto in = makeImage({16, 16}), out = makeImage({16, 16});
    const auto from = context->createBuffer(in), to = context->createBuffer(out);
    const auto buffer = context->createBuffer(4000);
    const auto swap = compile(*context, kSwap), fill = compile(*context, kFill);
    for (int frame = 0; frame < 2; ++frame) {
        if (swap && swap->setArg(0, from) && swap->setArg(1, to) && swap->setArg(2, 1.0f))
            swap->execute2D(16, 16);
        if (fill && fill->setArg(0, buffer) && fill->setArg(1, 1.0f) && fill->setArg(2, short{100}))
            fill->execute1D(100);
    }
    context->createBuffer(in);
    if (buffer)
        buffer->copyToHost();
}

void workThroughAndCleanUp()
{
    workThrough();
    OpenGLTextureCache::instance().clear();
}

} // namespace

TEST_F(ComputeFailuresTest, AFrameGoesOnAfterEachRefusalWithOneLine)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    const auto in = makeImage({16, 16}), out = makeImage({16, 16});
    const auto from = context->createBuffer(in), to = context->createBuffer(out);
    const auto kernel = compile(*context, kSwap);
    ASSERT_TRUE(from && to && kernel);
    struct
    {
        const char* call;
        bool executed;
        const char* line;
    } const cases[] = {
        {"clEnqueueAcquireGLObjects", true,
         "OpenGLInterop::prepareBuffers() : acquire failed (-5)\n"},
        {"clEnqueueReleaseGLObjects", true,
         "OpenGLInterop::unPrepareBuffers() : release failed (-5)\n"},
        {"clEnqueueNDRangeKernel", false,
         "OpenCLProgramKernel::execute2D() : clEnqueueNDRangeKernel() failed (-5)\n"},
        {"clFlush", true, ""},
        {"clFinish", true, ""},
        {"clSetKernelArg", true, "OpenCLProgramKernel::setArg() : clSetKernelArg() failed (-5)\n"},
        {"none", true, ""},
    };
    for (const auto& c : cases) {
        layer_->reset();
        layer_->fail(c.call, -5);
        EXPECT_EQ(outputOf([&] {
                      if (kernel->setArg(0, from)) {
                          kernel->setArg(1, to);
                          kernel->setArg(2, 1.0f);
                      }
                      EXPECT_EQ(kernel->execute2D(16, 16), c.executed) << c.call;
                  }),
                  c.line)
            << c.call;
    }
}

TEST_F(ComputeFailuresTest, BuffersThatCannotBeReadOrReleasedLeaveALine)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    auto buffer = context->createBuffer(400);
    layer_->fail("clEnqueueReadBuffer", -36);
    layer_->fail("clReleaseMemObject", -38);
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(buffer->copyToHost());
                  buffer.reset();
              }),
              "OpenCLBuffer::copyToHost() : clEnqueueReadBuffer() failed (-36)\n"
              "OpenCLBuffer::~OpenCLBuffer() : clReleaseMemObject() failed (-38)\n");
}

TEST_F(ComputeFailuresTest, ProgramsWithoutKernelsAndWithoutSourceAreSaid)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    layer_->fail("clCreateKernelsInProgram", -5);
    EXPECT_EQ(outputOf([&] {
                  const auto program = context->compileProgram(kFill);
                  EXPECT_TRUE(program && program->getNumKernels() == 0);
              }),
              "OpenCLProgramBase::OpenCLProgramBase() : clCreateKernelsInProgram() failed (-5)\n");
    layer_->fail("clCreateProgramWithSource", -6);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(context->compileProgram(kFill)); }),
              "OpenCLProgramBase::make() : clCreateProgramWithSource() failed (-6)\n");
    layer_->fail("clGetKernelInfo", -5);
}

TEST_F(ComputeFailuresTest, AnySingleCallMayFailWithoutACrashOrALeak)
{
    NEEDS_LAYER();
    workThroughAndCleanUp();
    const std::vector<std::string> calls = layer_->calls();
    for (std::size_t n = 0; n < calls.size(); ++n) {
        layer_->reset();
        layer_->failNth(static_cast<int>(n) + 1, -5);
        const int programs = layer_->alive(ComputeLayer::eProgram);
        const std::string text = outputOf(workThroughAndCleanUp);
        const bool stays = calls[n] == "clBuildProgram";
        EXPECT_EQ(layer_->alive(ComputeLayer::eProgram) - programs, stays) << n << ' ' << calls[n];
        programsThatStay_ += stays;
        for (const auto kind : {ComputeLayer::eContext, ComputeLayer::eQueue, ComputeLayer::eMem,
                                ComputeLayer::eKernel})
            ASSERT_EQ(layer_->alive(kind), 0) << n << ' ' << calls[n] << ", kind " << kind;
        EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 4) << calls[n] << ":\n" << text;
    }
}
