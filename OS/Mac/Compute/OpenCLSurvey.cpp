#include "OS/Mac/Compute/OpenCLSurvey.h"

#include "OS/Mac/Compute/CLHandle.h"
#include "OS/Mac/Compute/OpenCLPlatforms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

namespace {

LightweightString<wchar_t> wide(const std::string& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

bool isGPU(cl_device_id device)
{
    cl_device_type type = 0;
    clGetDeviceInfo(device, CL_DEVICE_TYPE, sizeof type, &type, nullptr);
    return (type & CL_DEVICE_TYPE_GPU) != 0;
}

// @return why no context can be made on a device; empty where one can
std::string tryContext(cl_device_id device, const std::vector<cl_context_properties>& properties)
{
    cl_int error = CL_SUCCESS;
    const CLContext context(
        clCreateContext(properties.data(), 1, &device, nullptr, nullptr, &error));
    if (!context) {
        const bool shares = properties.size() > 3; // more than the platform and the end
        return std::string(shares ? "gives no context that shares with GL" : "gives no context") +
               " (error " + std::to_string(error) + ')';
    }
    const CLQueue queue(
        clCreateCommandQueue(context.get(), device, CL_QUEUE_PROFILING_ENABLE, &error));
    return queue ? std::string() : "gives no queue (error " + std::to_string(error) + ')';
}

GPUComputeDevice describe(cl_platform_id platform, cl_device_id device)
{
    using namespace OpenCLPlatforms;
    GPUComputeDevice described;
    described.platform_ = wide(text(platform, CL_PLATFORM_NAME));
    described.device_ = wide(text(device, CL_DEVICE_NAME));
    described.vendor_ = wide(text(device, CL_DEVICE_VENDOR));
    described.version_ = wide(text(device, CL_DEVICE_VERSION));
    described.driver_ = wide(text(device, CL_DRIVER_VERSION));
    described.gpu_ = isGPU(device);
    described.sharing_ = hasExtension(device, "cl_khr_gl_sharing");
    return described;
}

} // namespace

void OpenCLSurvey::append(std::vector<GPUComputeDevice>& devices)
{
    const OpenGLContextProtector protector;
    bool found = false;
    for (cl_platform_id platform : OpenCLPlatforms::list(OpenCLPlatforms::count())) {
        const auto properties = OpenCLPlatforms::contextProperties(platform);
        for (cl_device_id device : OpenCLPlatforms::devices(platform, CL_DEVICE_TYPE_ALL)) {
            GPUComputeDevice described = describe(platform, device);
            std::string reason;
            if (!described.gpu_)
                reason = "is no GPU";
            else if (OpenCLPlatforms::isPassedOver(device))
                reason = "devices of this vendor are passed over";
            else if (found)
                reason = "another device was found first";
            else
                reason = tryContext(device, properties);
            described.chosen_ = reason.empty();
            described.reason_ = wide(reason);
            found = found || described.chosen_;
            devices.push_back(described);
        }
    }
}
