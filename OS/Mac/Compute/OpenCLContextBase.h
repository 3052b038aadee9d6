#pragma once

#include "OS/Mac/Compute/CLHandle.h"

#include <OS/Compute/iOpenCLContext.h>
#include <OS/Compute/iOpenCLGraphicsInterop.h>

class OpenGLInterop;

/// An OpenCL context on one device, with its queue.
class OpenCLContextBase : public iOpenCLContext
{
public:
    /// Makes the queue, for itself and for the interop. Where that fails, prints
    /// "OpenCLContextBase::OpenCLContextBase() : clCreateCommandQueue() failed (%d)\n" and has
    /// none.
    OpenCLContextBase(CLContext context, cl_device_id device,
                      const Tq::Ptr<OpenGLInterop>& interop);
    /// Releases the queue, then the context.
    ~OpenCLContextBase() override = default;
    OpenCLContextBase(const OpenCLContextBase&) = delete;
    OpenCLContextBase& operator=(const OpenCLContextBase&) = delete;

    Tq::Ptr<iGPUBuffer> createBuffer(unsigned int sizeBytes) override;
    Tq::Ptr<iGPUBuffer> createBuffer(const Tq::Ptr<iGPUImage>& image) override;

    cl_context getImpl() const override { return context_.get(); }
    cl_device_id getDevice() const override { return device_; }
    cl_command_queue getCommandQueue() const override { return queue_.get(); }
    void prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const override;
    void unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const override;

private:
    CLContext context_;
    CLQueue queue_;
    cl_device_id device_;
    Tq::Ptr<iOpenCLGraphicsInterop> interop_;
};
