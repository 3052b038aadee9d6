#pragma once

#include <OS/Compute/OpenCLTypes.h>
#include <OS/Compute/iGPUComputeContext.h>

/// A compute context of OpenCL, for clients that call OpenCL themselves. Handles are lent: they
/// live as long as the context.
class OS_API iOpenCLContext : public iGPUComputeContext
{
public:
    ~iOpenCLContext() override = default;

    virtual cl_context getImpl() const = 0;
    virtual cl_device_id getDevice() const = 0;
    /// In order, with profiling.
    virtual cl_command_queue getCommandQueue() const = 0;
    /// As those of iOpenCLGraphicsInterop.
    virtual void prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const = 0;
    virtual void unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const = 0;
};
