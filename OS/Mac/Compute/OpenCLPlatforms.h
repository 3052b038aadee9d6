#pragma once

#include "OS/Mac/Compute/CL.h"

#include <string>
#include <vector>

/// The OpenCL runtimes of this machine and their devices, asked afresh at each call. Any thread.
namespace OpenCLPlatforms {

/// 0 where they cannot be counted, too.
cl_uint count();
/// The first `count` runtimes; empty where they cannot be listed.
std::vector<cl_platform_id> list(cl_uint count);
/// Empty where there are none and where they cannot be listed.
std::vector<cl_device_id> devices(cl_platform_id platform, cl_device_type type);

/// Empty where the driver does not say. Texts longer than 64 KiB are not read.
std::string text(cl_device_id device, cl_device_info what);
std::string text(cl_platform_id platform, cl_platform_info what);
/// Whether the driver names an extension.
bool hasExtension(cl_device_id device, const char* name);
/// Whether the vendor is exactly "intel", in any case: such a device is passed over, deliberately.
/// Other names that begin so are not.
bool isPassedOver(cl_device_id device);

/// The properties of a context on a platform: those of sharing with the GL context that is current
/// on the calling thread, where one is; the platform's; and the end.
std::vector<cl_context_properties> contextProperties(cl_platform_id platform);

} // namespace OpenCLPlatforms
