#include "OS/Mac/Compute/OpenCLContextBase.h"

#include "OS/Mac/Compute/OpenCLBuffer.h"
#include "OS/Mac/Compute/OpenGLInterop.h"
#include "OS/Mac/Core/Assertion.h"

#include <utility>

OpenCLContextBase::OpenCLContextBase(CLContext context, cl_device_id device,
                                     const Tq::Ptr<OpenGLInterop>& interop)
    : context_(std::move(context)), device_(device), interop_(interop)
{
    cl_int error = CL_SUCCESS;
    queue_.reset(clCreateCommandQueue(context_.get(), device_, CL_QUEUE_PROFILING_ENABLE, &error));
    if (!queue_)
        OSInternal::printLine("OpenCLContextBase::OpenCLContextBase() : clCreateCommandQueue() "
                              "failed (%d)\n",
                              error);
    interop->setQueue(queue_.get(), device_);
}

Tq::Ptr<iGPUBuffer> OpenCLContextBase::createBuffer(unsigned int sizeBytes)
{
    return OpenCLBuffer::make(*this, sizeBytes);
}

Tq::Ptr<iGPUBuffer> OpenCLContextBase::createBuffer(const Tq::Ptr<iGPUImage>& image)
{
    return interop_->createBuffer(*this, image);
}

void OpenCLContextBase::prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const
{
    interop_->prepareBuffers(mems, count);
}

void OpenCLContextBase::unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const
{
    interop_->unPrepareBuffers(mems, count);
}
