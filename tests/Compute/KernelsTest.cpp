#include "Compute/ComputeRig.h"
#include "support/BackgroundThread.h"

#include "OS/Mac/Compute/OpenCLProgram.h"

#include <atomic>
#include <cstring>

namespace {

using KernelsTest = ComputeTest;
using ::testing::EndsWith;
using ::testing::HasSubstr;
using ::testing::MatchesRegex;
using ::testing::StartsWith;

constexpr short kCount = 1000;
constexpr char kArgumentFailed[] =
    "OpenCLProgramKernel::setArg\\(\\) : clSetKernelArg\\(\\) failed \\(-[0-9]+\\)\n";

constexpr char kLogBegins[] =
    "---------------- OpenCLProgramBase::make() : clBuildProgram() failed "
    "----------------\n";
constexpr char kLogEnds[] =
    "-----------------------------------------------------------------------"
    "--------------\n";

// Sets the arguments of a kernel made of kFill.
void set(iGPUProgramKernel& kernel, const Tq::Ptr<iGPUBuffer>& out, float first)
{
    EXPECT_TRUE(kernel.setArg(0, out));
    EXPECT_TRUE(kernel.setArg(1, first));
    EXPECT_TRUE(kernel.setArg(2, kCount));
}

void expectFilled(const Tq::Ptr<iGPUBuffer>& buffer, float first)
{
    const std::vector<float> values = floatsIn(buffer, kCount);
    ASSERT_EQ(values.size(), static_cast<std::size_t>(kCount));
    for (std::size_t i = 0; i < values.size(); ++i)
        ASSERT_EQ(values[i], first + static_cast<float>(i)) << i;
}

// A kernel whose parameters are this many buffers; it writes its first item's index to each.
Lines kernelOf(int buffers)
{
    std::string head = "kernel void many(", body;
    for (int i = 0; i < buffers; ++i) {
        const std::string name = "b" + std::to_string(i);
        head += (i ? ", global int* " : "global int* ") + name;
        body += " *" + name + " = 1;";
    }
    return {(head + ") {").c_str(), body.c_str(), "}"};
}

} // namespace

TEST_F(KernelsTest, ComputeWhatBuffersHold)
{
    MAKE_CONTEXT(context);
    const auto buffer = context->createBuffer(kCount * 4);
    for (const auto& program :
         {context->compileProgram(kFill), OpenCLProgram::make(*context, kFill)}) {
        ASSERT_TRUE(program);
        const auto kernel = program->getKernel("fill");
        ASSERT_TRUE(kernel);
        for (const float first : {2.5f, -3.0f}) {
            set(*kernel, buffer, first);
            EXPECT_TRUE(kernel->execute1D(kCount));
            expectFilled(buffer, first);
        }
        EXPECT_TRUE(kernel->setArg(1, 7.0f));
        EXPECT_TRUE(kernel->execute2D(kCount, 1)) << "with the other arguments as they were";
        expectFilled(buffer, 7.0f);
    }
}

TEST_F(KernelsTest, RangesAreRoundedUpToWholeGroups)
{
    NEEDS_LAYER();
    struct
    {
        std::size_t largestGroup;
        unsigned int size[2]; // the second 0: of one dimension
        const char* call;
    } const cases[] = {
        {256, {1000, 0}, "clEnqueueNDRangeKernel 1024/256"},
        {256, {256, 0}, "clEnqueueNDRangeKernel 256/256"},
        {256, {257, 0}, "clEnqueueNDRangeKernel 512/256"},
        {256, {0, 0}, "clEnqueueNDRangeKernel 0/256"},
        {256, {1920, 1080}, "clEnqueueNDRangeKernel 1920/16 1088/16"},
        {256, {1, 1}, "clEnqueueNDRangeKernel 16/16 16/16"},
        {100, {1000, 0}, "clEnqueueNDRangeKernel 1000/100"},
        {99, {100, 100}, "clEnqueueNDRangeKernel 108/9 108/9"},
        {65536, {1000, 0}, "clEnqueueNDRangeKernel 1024/256"},
        {65536, {20, 20}, "clEnqueueNDRangeKernel 32/16 32/16"},
        {65536 + 64, {100, 0}, "clEnqueueNDRangeKernel 128/64"},
        {65536 + 1, {3, 5}, "clEnqueueNDRangeKernel 3/1 5/1"},
    };
    for (const auto& c : cases) {
        layer_->reset();
        layer_->setDevices({{.largestGroup = c.largestGroup}});
        MAKE_CONTEXT(context);
        const auto buffer = context->createBuffer(kCount * 4);
        const auto kernel = compile(*context, kFill);
        ASSERT_TRUE(kernel);
        set(*kernel, buffer, 0.0f);
        outputOf([&] { // runtimes differ on empty ranges
            const bool done =
                c.size[1] ? kernel->execute2D(c.size[0], c.size[1]) : kernel->execute1D(c.size[0]);
            EXPECT_TRUE(done || c.size[0] == 0);
        });
        EXPECT_EQ(seen(c.call), 1) << c.call;
    }
}

TEST_F(KernelsTest, ADeviceThatDoesNotTellItsLargestGroupGetsTheDefault)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    const auto program = context->compileProgram(kFill);
    layer_->fail("clGetDeviceInfo", -30);
    const auto kernel = OpenCLProgram::make(*context, kFill)->getKernel("fill");
    ASSERT_TRUE(kernel);
    const auto buffer = context->createBuffer(kCount * 4);
    set(*kernel, buffer, 0.0f);
    EXPECT_TRUE(kernel->execute1D(10));
    EXPECT_EQ(seen("clEnqueueNDRangeKernel 256/256"), 1);
}

TEST_F(KernelsTest, AreFoundByIndexAndName)
{
    MAKE_CONTEXT(context);
    const auto program = context->compileProgram({"kernel void one(global int* a) { *a = 1; }",
                                                  "kernel void two(global int* a) { *a = 2; }",
                                                  "kernel void three(global int* a) { *a = 3; }"});
    ASSERT_TRUE(program);
    EXPECT_EQ(program->getNumKernels(), 3);
    for (const char* name : {"one", "two", "three"}) {
        ASSERT_TRUE(program->getKernel(name)) << name;
        EXPECT_EQ(program->getKernel(name)->getName(), name);
    }
    EXPECT_TRUE(program->getKernel(static_cast<unsigned short>(2)));
    for (const unsigned short index : std::initializer_list<unsigned short>{3, 7, 65535})
        EXPECT_FALSE(program->getKernel(index)) << index;
    for (const char* name : {"", "on", "One", "one "})
        EXPECT_FALSE(program->getKernel(name)) << name;
}

TEST_F(KernelsTest, PixelMacrosReadInOrderAndStoreBlueFirst)
{
    MAKE_CONTEXT(context);
    const auto kernel = compile(
        *context, {"kernel void probe(global float* out) {", "  float4 p = (float4)(1, 2, 3, 4);",
                   "  float4 made = MAKEPIXEL(RED(p), GREEN(p), BLUE(p), ALPHA(p));",
                   "  out[0] = RED(p); out[1] = GREEN(p); out[2] = BLUE(p); out[3] = ALPHA(p);",
                   "  vstore4(made, 1, out);", "}"});
    const auto buffer = context->createBuffer(32);
    ASSERT_TRUE(kernel && kernel->setArg(0, buffer) && kernel->execute1D(1));
    EXPECT_EQ(floatsIn(buffer, 8), (std::vector<float>{1, 2, 3, 4, 3, 2, 1, 4}));
}

TEST_F(KernelsTest, ArgumentsThatDoNotFitLeaveALine)
{
    MAKE_CONTEXT(context);
    const auto kernel = compile(*context, kFill);
    const auto buffer = context->createBuffer(16);
    ASSERT_TRUE(kernel && buffer);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(kernel->setArg(9, 1.0f)); }),
              "OpenCLProgramKernel::setArg() : invalid argumment(9 supplied, 3 max)\n");
    EXPECT_THAT(outputOf([&] { EXPECT_FALSE(kernel->setArg(9, short{1})); }),
                MatchesRegex(kArgumentFailed));
    EXPECT_THAT(outputOf([&] { EXPECT_FALSE(kernel->setArg(9, buffer)); }),
                MatchesRegex(kArgumentFailed));
    EXPECT_THAT(outputOf([&] { EXPECT_FALSE(kernel->setArg(2, 1.0f)); }),
                MatchesRegex(kArgumentFailed))
        << "four bytes for two";

    class Foreign final : public iGPUBuffer
    {
        void acquire() override {}
        void release() override {}
        Tq::Ptr<unsigned char> copyToHost() const override { return {}; }
    };
    EXPECT_EQ(outputOf([&] {
                  EXPECT_FALSE(kernel->setArg(0, Tq::Ptr<iGPUBuffer>()));
                  EXPECT_FALSE(kernel->setArg(0, Tq::Ptr<iGPUBuffer>(new Foreign)));
              }),
              "");
    EXPECT_THAT(outputOf([&] { EXPECT_FALSE(kernel->execute1D(1)); }),
                MatchesRegex("OpenCLProgramKernel::execute1D\\(\\) : clEnqueueNDRangeKernel\\(\\) "
                             "failed \\(-[0-9]+\\)\n"))
        << "arguments are missing";
}

TEST_F(KernelsTest, TakeSixteenBuffersBetweenTwoExecutions)
{
    MAKE_CONTEXT(context);
    const auto kernel = compile(*context, kernelOf(17));
    ASSERT_TRUE(kernel);
    std::vector<Tq::Ptr<iGPUBuffer>> buffers;
    for (int i = 0; i < 17; ++i)
        buffers.push_back(context->createBuffer(4));
    EXPECT_EQ(outputOf([&] {
                  for (unsigned char i = 0; i < 17; ++i)
                      EXPECT_EQ(kernel->setArg(i, buffers[i]), i < 16) << int{i};
                  EXPECT_TRUE(kernel->setArg(16, buffers[3])) << "listed already";
              }),
              "OpenCLProgramKernel::setArg() : clSetKernelArg() failed (-5)\n");
    EXPECT_TRUE(kernel->execute1D(1));
    EXPECT_TRUE(kernel->setArg(16, buffers[16])) << "the execution made room";
    EXPECT_TRUE(kernel->execute1D(1));
    for (const auto& buffer : buffers) {
        const auto bytes = buffer->copyToHost();
        ASSERT_TRUE(bytes);
        EXPECT_EQ(*bytes, 1);
    }
}

TEST_F(KernelsTest, WhatIsSetAndWhatWasMadeOutlivesItsMaker)
{
    Tq::Ptr<iGPUProgramKernel> kernel;
    Tq::Ptr<iGPUBuffer> result;
    {
        MAKE_CONTEXT(context);
        kernel = compile(*context, kFill); // the program goes
        result = context->createBuffer(kCount * 4);
        ASSERT_TRUE(kernel && result);
        for (int i = 0; i < 3; ++i) // each replaced before it was used
            set(*kernel, context->createBuffer(kCount * 4), 0.0f);
        EXPECT_TRUE(kernel->execute1D(kCount)) << "the buffer is the kernel's now";
    } // the context goes
    EXPECT_TRUE(kernel->execute1D(kCount)) << "and stays so";
    set(*kernel, result, 1.0f);
    EXPECT_TRUE(kernel->execute1D(kCount));
    kernel.reset();
    expectFilled(result, 1.0f);
}

TEST_F(KernelsTest, DifferentKernelsRunOnDifferentThreads)
{
    MAKE_CONTEXT(context);
    std::atomic<float> next{1.0f};
    BackgroundThreads threads(4, [&] {
        const float first = next.exchange(next + 100.0f);
        const auto kernel = compile(*context, kFill);
        const auto buffer = context->createBuffer(kCount * 4);
        for (int i = 0; i < 20; ++i) {
            set(*kernel, buffer, first + static_cast<float>(i));
            ASSERT_TRUE(kernel->execute1D(kCount));
        }
        expectFilled(buffer, first + 19.0f);
    });
    threads.join();
}

TEST_F(KernelsTest, BuffersThatCannotBeAreNull)
{
    MAKE_CONTEXT(context);
    EXPECT_THAT(
        outputOf([&] { EXPECT_FALSE(context->createBuffer(0u)); }),
        MatchesRegex("OpenCLBuffer::make\\(\\) : clCreateBuffer\\(\\) failed \\(-[0-9]+\\)\n"));
    EXPECT_FALSE(context->createBuffer(Tq::Ptr<iGPUImage>()));
}

TEST_F(KernelsTest, SourceThatDoesNotCompileShowsTheLogBetweenTwoLines)
{
    MAKE_CONTEXT(context);
    programsThatStay_ = 1; // deliberately
    const std::string text = outputOf(
        [&] { EXPECT_FALSE(context->compileProgram({"kernel void broken() { nonsense; }"})); });
    EXPECT_THAT(text, StartsWith(kLogBegins));
    EXPECT_THAT(text, EndsWith(std::string("\n") + kLogEnds));
    EXPECT_THAT(text, HasSubstr("nonsense"));
}

TEST_F(KernelsTest, LogsOfAnyLengthAreShownUpToTheLimit)
{
    NEEDS_LAYER();
    MAKE_CONTEXT(context);
    Lines lines(400, "#warning a line of a log that is longer than all that is ever shown of it");
    lines.push_back("kernel void broken() { nonsense; }");
    programsThatStay_ = 2;
    const std::string text = outputOf([&] { EXPECT_FALSE(context->compileProgram(lines)); });
    EXPECT_THAT(text, HasSubstr("a line of a log"));
    EXPECT_THAT(text, EndsWith(kLogEnds));
    const std::size_t shown = text.size() - std::strlen(kLogBegins) - std::strlen(kLogEnds);
    EXPECT_TRUE(shown == 10239 || shown == 10240) << shown << ", the end of a cut line with it";

    layer_->fail("clBuildProgram", -11);
    layer_->fail("clGetProgramBuildInfo", -5);
    EXPECT_EQ(outputOf([&] { EXPECT_FALSE(context->compileProgram(kFill)); }),
              std::string(kLogBegins) + kLogEnds);
}
