#pragma once

#include <OS/Compute/iGPUBuffer.h>
#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>

/// One kernel of a program: its arguments are set, then it is executed.
///
/// Arguments stay set from one execution to the next, except for the list of the buffers to
/// acquire, which each execution empties, deliberately: set buffers made from images anew before
/// each. The kernel keeps its context alive, and a buffer that is set. One kernel is used by one
/// thread at a time; different kernels may be used by several.
///
/// Work-groups are as large as the device allows, whatever the kernel itself would need,
/// deliberately. Global sizes are rounded up to whole groups, so that a kernel must test its range
/// itself.
class OS_API iGPUProgramKernel : public iObject
{
public:
    ~iGPUProgramKernel() override = default;

    virtual LightweightString<char> getName() const = 0;

    /// Each sets an argument of exactly its parameter's type.
    /// @return false, after "OpenCLProgramKernel::setArg() : clSetKernelArg() failed (%d)\n" with
    /// the
    ///         error of OpenCL; for a float at an index that is none, after
    ///         "OpenCLProgramKernel::setArg() : invalid argumment(%d supplied, %d max)\n", spelt so
    virtual bool setArg(unsigned char index, short value) = 0;
    virtual bool setArg(unsigned char index, float value) = 0;
    /// A buffer made from an image is an `image2d_t` to the kernel, any other a pointer to global
    /// memory. Up to 16 different buffers between two executions; one more is refused with -5 in
    /// the failure line. Null, and what is no buffer of this library, gives false without a line.
    virtual bool setArg(unsigned char index, const Tq::Ptr<iGPUBuffer>& buffer) = 0;

    /// Queues one execution over a range and does not wait for it. Buffers made from images are
    /// acquired from GL before and given back to it after, under the GL lock: GL may draw with them
    /// at once. Where the device cannot order its work with GL's the call waits for the kernel
    /// then.
    /// @param n how many work-items at least; 0 is passed on as it is
    /// @return false, after "OpenCLProgramKernel::execute1D() : clEnqueueNDRangeKernel() failed
    ///         (%d)\n" ("execute2D()" likewise). Buffers that cannot be acquired or given back
    ///         leave a line of OpenGLInterop, and the kernel is executed all the same.
    virtual bool execute1D(unsigned int n) = 0;
    /// In square work-groups: 16 x 16 where the device allows 256.
    virtual bool execute2D(unsigned int width, unsigned int height) = 0;
};
