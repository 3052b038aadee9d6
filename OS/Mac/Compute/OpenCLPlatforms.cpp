#include "OS/Mac/Compute/OpenCLPlatforms.h"

#include "OS/Host/GLShare/GLShare.h"

#include <strings.h>

namespace {

constexpr std::size_t kLongestText = 65536;

// A text that is asked for in two steps: its size, then itself.
template <class Ask>
std::string textOf(Ask ask)
{
    std::size_t size = 0;
    if (ask(0, nullptr, &size) != CL_SUCCESS || size == 0 || size > kLongestText)
        return {};
    std::string text(size, '\0');
    if (ask(size, text.data(), nullptr) != CL_SUCCESS)
        return {};
    return text.c_str(); // up to the terminator
}

cl_context_properties property(const void* handle)
{
    return reinterpret_cast<cl_context_properties>(handle);
}

} // namespace

namespace OpenCLPlatforms {

cl_uint count()
{
    cl_uint count = 0;
    return clGetPlatformIDs(0, nullptr, &count) == CL_SUCCESS ? count : 0;
}

std::vector<cl_platform_id> list(cl_uint count)
{
    std::vector<cl_platform_id> platforms(count);
    if (count == 0 || clGetPlatformIDs(count, platforms.data(), nullptr) != CL_SUCCESS)
        return {};
    return platforms;
}

std::vector<cl_device_id> devices(cl_platform_id platform, cl_device_type type)
{
    cl_uint count = 0;
    if (clGetDeviceIDs(platform, type, 0, nullptr, &count) != CL_SUCCESS || count == 0)
        return {};
    std::vector<cl_device_id> devices(count);
    if (clGetDeviceIDs(platform, type, count, devices.data(), nullptr) != CL_SUCCESS)
        return {};
    return devices;
}

std::string text(cl_device_id device, cl_device_info what)
{
    return textOf([&](std::size_t size, void* value, std::size_t* needed) {
        return clGetDeviceInfo(device, what, size, value, needed);
    });
}

std::string text(cl_platform_id platform, cl_platform_info what)
{
    return textOf([&](std::size_t size, void* value, std::size_t* needed) {
        return clGetPlatformInfo(platform, what, size, value, needed);
    });
}

bool hasExtension(cl_device_id device, const char* name)
{
    const std::string all = ' ' + text(device, CL_DEVICE_EXTENSIONS) + ' ';
    return all.find(' ' + std::string(name) + ' ') != std::string::npos;
}

bool isPassedOver(cl_device_id device)
{
    // Left as it is by a driver whose text is longer.
    char vendor[64] = "";
    clGetDeviceInfo(device, CL_DEVICE_VENDOR, sizeof vendor - 1, vendor, nullptr);
    return strcasecmp(vendor, "intel") == 0;
}

std::vector<cl_context_properties> contextProperties(cl_platform_id platform)
{
    std::vector<cl_context_properties> properties;
    const Host::GLShare share = Host::GLShare::current();
    if (share.kind != Host::GLShare::eNone) {
        const bool glx = share.kind == Host::GLShare::eGLX;
        properties = {CL_GL_CONTEXT_KHR, property(share.context),
                      glx ? CL_GLX_DISPLAY_KHR : CL_EGL_DISPLAY_KHR, property(share.display)};
    }
    properties.insert(properties.end(), {CL_CONTEXT_PLATFORM, property(platform), 0});
    return properties;
}

} // namespace OpenCLPlatforms
