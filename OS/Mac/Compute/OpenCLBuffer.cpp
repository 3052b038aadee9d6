#include "OS/Mac/Compute/OpenCLBuffer.h"

#include "OS/Mac/Core/Assertion.h"

#include <new>
#include <utility>

Tq::Ptr<iGPUBuffer> OpenCLBuffer::make(const iOpenCLContext& context, unsigned int sizeBytes)
{
    cl_int error = CL_SUCCESS;
    CLMem mem(clCreateBuffer(context.getImpl(), CL_MEM_READ_WRITE, sizeBytes, nullptr, &error));
    if (!mem) {
        OSInternal::printLine("OpenCLBuffer::make() : clCreateBuffer() failed (%d)\n", error);
        return {};
    }
    return new OpenCLBuffer(sizeBytes, std::move(mem), context.getCommandQueue());
}

OpenCLBuffer::OpenCLBuffer(unsigned int sizeBytes, CLMem mem, cl_command_queue queue)
    : sizeBytes_(sizeBytes), mem_(std::move(mem))
{
    if (queue && clRetainCommandQueue(queue) == CL_SUCCESS)
        queue_.reset(queue);
}

OpenCLBuffer::~OpenCLBuffer()
{
    const cl_int error = clReleaseMemObject(mem_.release());
    if (error != CL_SUCCESS)
        OSInternal::printLine("OpenCLBuffer::~OpenCLBuffer() : clReleaseMemObject() failed (%d)\n",
                              error);
}

bool OpenCLBuffer::belongsTo(const iOpenCLContext& context) const
{
    cl_context own = nullptr;
    clGetMemObjectInfo(mem_.get(), CL_MEM_CONTEXT, sizeof own, &own, nullptr);
    return own == context.getImpl();
}

Tq::Ptr<unsigned char> OpenCLBuffer::copyToHost() const
{
    if (sizeBytes_ == 0 || !queue_)
        return {};
    std::unique_ptr<unsigned char[]> bytes(new (std::nothrow) unsigned char[sizeBytes_]);
    const cl_int error = bytes ? clEnqueueReadBuffer(queue_.get(), mem_.get(), CL_TRUE, 0,
                                                     sizeBytes_, bytes.get(), 0, nullptr, nullptr)
                               : CL_OUT_OF_HOST_MEMORY;
    if (error != CL_SUCCESS) {
        OSInternal::printLine("OpenCLBuffer::copyToHost() : clEnqueueReadBuffer() failed (%d)\n",
                              error);
        return {};
    }
    return bytes.release();
}
