#pragma once

#include "ComputeLayer.h"
#include "Runtime.h"

/// The runtime's processors in the dress of GPUs, by entries of OpenCL.
namespace DressedDevices {

ComputeLayer::Device dressOf(cl_device_id device);

cl_int CL_API_CALL getDeviceIDs(cl_platform_id platform, cl_device_type type, cl_uint room,
                                cl_device_id* out, cl_uint* count);
cl_int CL_API_CALL getDeviceInfo(cl_device_id device, cl_device_info what, std::size_t room,
                                 void* out, std::size_t* needed);

} // namespace DressedDevices
