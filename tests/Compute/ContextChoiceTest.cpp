#include "Compute/ComputeRig.h"
#include "support/TemporaryFolder.h"

#include "OS/Mac/Compute/OpenCLBuffer.h"
#include "OS/Mac/Compute/OpenCLPlatforms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

#include <cstdlib>
#include <thread>

namespace {

using ContextChoiceTest = ComputeTest;
using Device = ComputeLayer::Device;

constexpr char kNoPlatform[] = "OpenCLContext::make() : Failed to find any CL platforms\n";
constexpr char kNoContext[] = "OpenCLContext::make() : Failed to create a cl_context\n";
constexpr char kNoQueue[] =
    "OpenCLContextBase::OpenCLContextBase() : clCreateCommandQueue() failed "
    "(-6)\n";

std::vector<GPUComputeDevice> survey()
{
    std::vector<GPUComputeDevice> devices;
    OS()->mediaServices()->getGPUComputeDevices(devices);
    return devices;
}

// Devices of its own must be asked for before the runtime is loaded.
// @return whether this process has two now
bool useTwoDevices()
{
    setenv("POCL_DEVICES", "pthread pthread", 1);
    return OpenCLPlatforms::count() == 1 &&
           OpenCLPlatforms::devices(OpenCLPlatforms::list(1)[0], CL_DEVICE_TYPE_ALL).size() == 2;
}

} // namespace

TEST_F(ContextChoiceTest, EachRefusalLeavesItsLine)
{
    NEEDS_LAYER();
    struct
    {
        const char* what;
        const char* call;
        int error;
        std::string lines;
    } const cases[] = {
        {"no platform", "clGetPlatformIDs", -1001, kNoPlatform},
        {"devices that cannot be counted", "clGetDeviceIDs", -30, kNoContext},
        {"no context", "clCreateContext", -6, kNoContext},
        {"no queue", "clCreateCommandQueue", -6, std::string(kNoQueue) + kNoContext},
    };
    for (const auto& c : cases) {
        layer_->reset();
        layer_->fail(c.call, c.error);
        EXPECT_EQ(linesOf([] { EXPECT_FALSE(OpenCLContext::make()); }), c.lines) << c.what;
    }
    layer_->reset();
    layer_->failNth(2, -5);
    EXPECT_EQ(linesOf([] { EXPECT_FALSE(OpenCLContext::make()); }), "")
        << "platforms that can be counted but not listed";
}

TEST_F(ContextChoiceTest, TakesOnlyGPUsAndPassesOneVendorOver)
{
    NEEDS_LAYER();
    struct
    {
        Device device;
        bool made;
    } const cases[] = {
        {{.vendor = "ACME", .gpu = false}, false},
        {{.vendor = "Intel"}, false},
        {{.vendor = "INTEL"}, false},
        {{.vendor = "intel"}, false},
        {{.vendor = "Intel(R) Corporation"}, true},
        {{.vendor = "Intel "}, true},
        {{.vendor = ""}, true},
        {{.vendor = std::string(500, 'x')}, true},
    };
    for (const auto& c : cases) {
        layer_->setDevices({c.device});
        EXPECT_EQ(linesOf([&] { EXPECT_EQ(static_cast<bool>(OpenCLContext::make()), c.made); }),
                  c.made ? "" : kNoContext)
            << c.device.vendor;
        for (const GPUComputeDevice& device : survey())
            EXPECT_TRUE(device.chosen_ == c.made && device.reason_.empty() == c.made)
                << c.device.vendor;
    }
}

TEST_F(ContextChoiceTest, AVendorWhoseNameCannotBeReadIsNotPassedOver)
{
    NEEDS_LAYER();
    layer_->setDevices({{.vendor = "Intel"}});
    layer_->fail("clGetDeviceInfo", -30);
    EXPECT_TRUE(OpenCLContext::make());
}

TEST_F(ContextChoiceTest, TheSecondDeviceServesWhereTheFirstDoesNot)
{
    NEEDS_LAYER();
    if (runsInFreshProcess())
        return;
    if (!useTwoDevices())
        GTEST_SKIP() << "this runtime has one device";
    const Device good{.vendor = "Good"}, unsharing{.vendor = "Alone", .shares = false},
        passedOver{.vendor = "Intel"}, processor{.vendor = "CPU", .gpu = false};
    OpenGLUtils::instance();
    const bool gl = OpenGLUtils::isInitialised();
    for (const Device& first : {passedOver, processor, gl ? unsharing : passedOver}) {
        layer_->setDevices({first, good});
        EXPECT_TRUE(OpenCLContext::make()) << first.vendor;
        const auto devices = survey();
        ASSERT_EQ(devices.size(), 2u);
        EXPECT_FALSE(devices[0].chosen_ || devices[0].reason_.empty()) << first.vendor;
        EXPECT_TRUE(devices[1].chosen_ && devices[1].reason_.empty()) << first.vendor;
    }
    layer_->setDevices({good, good});
    const auto devices = survey();
    EXPECT_TRUE(devices[0].chosen_ && !devices[1].chosen_ && !devices[1].reason_.empty());
    EXPECT_TRUE(devices[0].gpu_ && devices[0].sharing_ && devices[0].vendor_ == L"Good");
    EXPECT_FALSE(devices[0].platform_.empty() || devices[0].device_.empty() ||
                 devices[0].version_.empty() || devices[0].driver_.empty());
}

TEST_F(ContextChoiceTest, NothingInstalledIsNoPlatform)
{
    NEEDS_LAYER();
    if (runsInFreshProcess())
        return;
    const TemporaryFolder none;
    unsetenv("OPENCL_LAYERS");
    setenv("OCL_ICD_VENDORS", none.path().c_str(), 1);
    EXPECT_EQ(linesOf([] { EXPECT_FALSE(OpenCLContext::make()); }), kNoPlatform);
    EXPECT_TRUE(survey().empty());
}

TEST_F(ContextChoiceTest, ARuntimeForProcessorsAloneIsNoGPU)
{
    NEEDS_LAYER();
    if (runsInFreshProcess())
        return;
    unsetenv("OPENCL_LAYERS");
    EXPECT_EQ(linesOf([] { EXPECT_FALSE(OpenCLContext::make()); }), kNoContext);
    const auto devices = survey();
    ASSERT_FALSE(devices.empty());
    EXPECT_FALSE(devices[0].gpu_ || devices[0].sharing_ || devices[0].chosen_);
    EXPECT_EQ(devices[0].reason_, L"is no GPU");
}

TEST_F(ContextChoiceTest, WithoutACurrentGLContextItComputesButSharesNothing)
{
    NEEDS_LAYER();
    if (runsInFreshProcess())
        return;
    struct
    {
        Device device;
        const char* line; // of an image
    } const cases[] = {
        {{}, "OpenGLInterop::createBuffer() : clCreateFromGLTexture2D() failed (-34)\n"},
        {{.shares = false}, ""}, // nothing of OpenCL's GL part may be called
    };
    std::vector<Tq::Ptr<iOpenCLContext>> contexts;
    for (const auto& c : cases) {
        layer_->setDevices({c.device});
        contexts.push_back(OpenCLContext::make());
        ASSERT_TRUE(contexts.back());
        const auto buffer = contexts.back()->createBuffer(64);
        const auto kernel = compile(*contexts.back(), kFill);
        ASSERT_TRUE(kernel && kernel->setArg(0, buffer) && kernel->setArg(1, 5.0f) &&
                    kernel->setArg(2, static_cast<short>(16)) && kernel->execute1D(16));
        EXPECT_EQ(floatsIn(buffer, 16).back(), 20.0f);
        contexts.back()->prepareBuffers({buffer.dynamicCast<OpenCLBuffer>()->getImpl()}, 1);
    }
    EXPECT_EQ(seen("clCreateContext"), 2) << "without a remark on GL";
    EXPECT_EQ(seen("clGetGLObjectInfo"), 1) << "of a device that could share";

    OpenGLUtils::instance();
    if (!OpenGLUtils::isInitialised())
        return;
    const auto image = makeImage({8, 8});
    for (std::size_t i = 0; i < contexts.size(); ++i)
        EXPECT_EQ(outputOf([&] { EXPECT_FALSE(contexts[i]->createBuffer(image)); }), cases[i].line);
}

TEST_F(ContextChoiceTest, TheFactoryMakesOneTypeOnly)
{
    EXPECT_EQ(outputOf([] {
                  for (const int type : {1, -1, 100})
                      EXPECT_FALSE(OS()->mediaServices()->createGPUComputeContext(
                          static_cast<iGPUComputeContext::eType>(type)));
              }),
              "");
    const auto made = OS()->mediaServices()->createGPUComputeContext(iGPUComputeContext::eOpenCL);
    if (layer_) {
        EXPECT_TRUE(made.dynamicCast<iOpenCLContext>());
    }
}

TEST_F(SharingTest, ADeviceThatDoesNotShareIsNoCandidate)
{
    NEEDS_LAYER();
    layer_->setDevices({{.shares = false}});
    EXPECT_EQ(linesOf([] { EXPECT_FALSE(OpenCLContext::make()); }), kNoContext);
    const auto devices = survey();
    ASSERT_FALSE(devices.empty());
    EXPECT_EQ(devices[0].reason_, L"gives no context that shares with GL (error -1000)");
}

TEST_F(SharingTest, ContextsOfEveryThreadShareWithGL)
{
    NEEDS_LAYER();
    Tq::Ptr<iOpenCLContext> context;
    std::thread([&] { context = OpenCLContext::make(); }).join();
    ASSERT_TRUE(context);
    EXPECT_EQ(seen("clCreateContext GLX") + seen("clCreateContext EGL"), 1);
    const auto image = makeImage({8, 8});
    EXPECT_TRUE(context->createBuffer(image));
    EXPECT_FALSE(OpenGLContextProtector::hasContext()) << "put back";
}
