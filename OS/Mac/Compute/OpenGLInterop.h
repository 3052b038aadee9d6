#pragma once

#include "OS/Mac/Compute/CL.h"

#include <OS/Compute/iOpenCLGraphicsInterop.h>

/// iOpenCLGraphicsInterop for OpenGL. Without a device that shares nothing of OpenCL's GL part is
/// called: runtimes may lack it.
class OpenGLInterop final : public iOpenCLGraphicsInterop
{
public:
    /// @param queue lent; lives as long as the context that this belongs to
    void setQueue(cl_command_queue queue, cl_device_id device);

    /// An image keeps the buffer of the context that used it last.
    Tq::Ptr<iGPUBuffer> createBuffer(const iOpenCLContext& context,
                                     const Tq::Ptr<iGPUImage>& image) const override;
    void prepareBuffers(const cl_mem (&mems)[16], unsigned char count) const override;
    /// Waits for the queue where the device cannot order its work with GL's, else flushes it.
    void unPrepareBuffers(const cl_mem (&mems)[16], unsigned char count) const override;

private:
    struct Objects
    {
        cl_mem mems[16];
        cl_uint count = 0;
    };
    Objects fromGL(const cl_mem (&mems)[16], unsigned char count) const;

    cl_command_queue queue_ = nullptr;
    bool shares_ = false;
    bool ordersWithGL_ = false;
};
