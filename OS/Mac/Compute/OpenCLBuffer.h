#pragma once

#include "OS/Mac/Compute/CLHandle.h"

#include <OS/Compute/iGPUBuffer.h>
#include <OS/Compute/iOpenCLContext.h>

/// iGPUBuffer: an OpenCL memory object.
class OpenCLBuffer final : public iGPUBuffer
{
public:
    /// @return null, after "OpenCLBuffer::make() : clCreateBuffer() failed (%d)\n"
    static Tq::Ptr<iGPUBuffer> make(const iOpenCLContext& context, unsigned int sizeBytes);

    /// A buffer made from an image has 0 bytes and no queue. The queue is kept alive.
    OpenCLBuffer(unsigned int sizeBytes, CLMem mem, cl_command_queue queue);
    /// A refusal prints "OpenCLBuffer::~OpenCLBuffer() : clReleaseMemObject() failed (%d)\n".
    ~OpenCLBuffer() override;
    OpenCLBuffer(const OpenCLBuffer&) = delete;
    OpenCLBuffer& operator=(const OpenCLBuffer&) = delete;

    cl_mem getImpl() const { return mem_.get(); }
    bool isFromImage() const { return !queue_; }
    /// False where the runtime does not say, too.
    bool belongsTo(const iOpenCLContext& context) const;

    void acquire() override {}
    void release() override {}
    Tq::Ptr<unsigned char> copyToHost() const override;

private:
    unsigned int sizeBytes_;
    CLMem mem_;
    CLQueue queue_;
};
