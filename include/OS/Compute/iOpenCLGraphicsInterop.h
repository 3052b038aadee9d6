#pragma once

#include <OS/Compute/iOpenCLContext.h>

/// How a compute context shares objects with the graphics library.
class OS_API iOpenCLGraphicsInterop : public iObject
{
public:
    ~iOpenCLGraphicsInterop() override = default;

    /// As iGPUComputeContext::createBuffer.
    virtual Tq::Ptr<iGPUBuffer> createBuffer(const iOpenCLContext& context,
                                             const Tq::Ptr<iGPUImage>& image) const = 0;
    /// Takes those of the first `count` objects that were made from GL over from it, after its work
    /// is finished; nothing where there are none. Takes the GL lock. A refusal prints
    /// "OpenGLInterop::prepareBuffers() : acquire failed (%d)\n".
    virtual void prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const = 0;
    /// Gives them back. A refusal prints "OpenGLInterop::unPrepareBuffers() : release failed
    /// (%d)\n".
    virtual void unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const = 0;
};
