#include "DressedDevices.h"

#include "LayerState.h"

#include <algorithm>

namespace {

std::vector<cl_device_id> processors(cl_platform_id platform)
{
    std::vector<cl_device_id> all(16);
    cl_uint count = 0;
    if (runtime.clGetDeviceIDs(platform, CL_DEVICE_TYPE_CPU, static_cast<cl_uint>(all.size()),
                               all.data(), &count) != CL_SUCCESS)
        return {};
    all.resize(std::min<std::size_t>(count, all.size()));
    return all;
}

// Without those that the dress decides on.
std::string extensionsOf(cl_device_id device)
{
    std::size_t size = 0;
    runtime.clGetDeviceInfo(device, CL_DEVICE_EXTENSIONS, 0, nullptr, &size);
    std::string names(size, '\0');
    runtime.clGetDeviceInfo(device, CL_DEVICE_EXTENSIONS, size, names.data(), nullptr);
    return names.c_str();
}

} // namespace

namespace DressedDevices {

ComputeLayer::Device dressOf(cl_device_id device)
{
    cl_platform_id platform = nullptr;
    runtime.clGetDeviceInfo(device, CL_DEVICE_PLATFORM, sizeof platform, &platform, nullptr);
    const auto all = processors(platform);
    const auto index = std::find(all.begin(), all.end(), device) - all.begin();
    return LayerState::get().device(static_cast<std::size_t>(index));
}

cl_int CL_API_CALL getDeviceIDs(cl_platform_id platform, cl_device_type type, cl_uint room,
                                cl_device_id* out, cl_uint* count)
{
    std::vector<cl_device_id> found;
    for (cl_device_id device : processors(platform)) {
        const cl_device_type own = dressOf(device).gpu ? CL_DEVICE_TYPE_GPU : CL_DEVICE_TYPE_CPU;
        if (type & (own | CL_DEVICE_TYPE_DEFAULT))
            found.push_back(device);
    }
    if (count)
        *count = static_cast<cl_uint>(found.size());
    if (found.empty())
        return CL_DEVICE_NOT_FOUND;
    for (std::size_t i = 0; out && i < std::min<std::size_t>(room, found.size()); ++i)
        out[i] = found[i];
    return CL_SUCCESS;
}

cl_int CL_API_CALL getDeviceInfo(cl_device_id device, cl_device_info what, std::size_t room,
                                 void* out, std::size_t* needed)
{
    const ComputeLayer::Device dress = dressOf(device);
    switch (what) {
    case CL_DEVICE_TYPE: {
        const cl_device_type type = dress.gpu ? CL_DEVICE_TYPE_GPU : CL_DEVICE_TYPE_CPU;
        return answer(&type, sizeof type, room, out, needed);
    }
    case CL_DEVICE_VENDOR:
        return answer(dress.vendor, room, out, needed);
    case CL_DEVICE_MAX_WORK_GROUP_SIZE:
        if (dress.largestGroup == 0)
            break;
        return answer(&dress.largestGroup, sizeof dress.largestGroup, room, out, needed);
    case CL_DEVICE_EXTENSIONS: {
        std::string names = extensionsOf(device);
        if (dress.shares)
            names += " cl_khr_gl_sharing";
        if (dress.ordersWithGL)
            names += " cl_khr_gl_event";
        return answer(names, room, out, needed);
    }
    default:
        break;
    }
    return runtime.clGetDeviceInfo(device, what, room, out, needed);
}

} // namespace DressedDevices
