// The operations of MediaServices that are about compute.
#include "OS/Mac/Compute/OpenCLContext.h"
#include "OS/Mac/Compute/OpenCLSurvey.h"
#include "OS/Mac/Media/MediaServices.h"

Tq::Ptr<iGPUComputeContext> MediaServices::createGPUComputeContext(iGPUComputeContext::eType type)
{
    if (type != iGPUComputeContext::eOpenCL)
        return {};
    return OpenCLContext::make();
}

void MediaServices::getGPUComputeDevices(std::vector<GPUComputeDevice>& devices)
{
    OpenCLSurvey::append(devices);
}
