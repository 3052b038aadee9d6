#pragma once

#include <OS/Core/Ptr.h>
#include <OS/OpenGL/iGPUResource.h>

/// Tq::Ptr<unsigned char> owns an array, made by `new unsigned char[]`.
template <>
inline void Tq::DtorTraits::destroy<unsigned char>(unsigned char* bytes)
{
    delete[] bytes;
}

/// Memory of a GPU compute device, possibly that of a GL image. Made by iGPUComputeContext; it may
/// outlive the context. Any thread, one at a time.
class OS_API iGPUBuffer : public iGPUResource
{
public:
    ~iGPUBuffer() override = default;

    /// Does nothing: a kernel acquires its buffers itself when it is executed.
    virtual void acquire() = 0;
    /// Does nothing, likewise.
    virtual void release() = 0;
    /// Waits for the kernels executed so far and reads the whole buffer.
    /// @return null for a buffer made from an image, deliberately, and after
    ///         "OpenCLBuffer::copyToHost() : clEnqueueReadBuffer() failed (%d)\n"
    virtual Tq::Ptr<unsigned char> copyToHost() const = 0;
};
