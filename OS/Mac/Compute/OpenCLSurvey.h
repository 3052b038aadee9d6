#pragma once

#include <OS/Compute/GPUComputeDevice.h>

#include <vector>

/// What OpenCLContext::make() would do, and why, for people.
namespace OpenCLSurvey {

/// Appends every device of every runtime. Makes contexts to try them and releases them again. Takes
/// the GL lock.
void append(std::vector<GPUComputeDevice>& devices);

} // namespace OpenCLSurvey
