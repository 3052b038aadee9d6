#pragma once

#include <OS/Compute/iGPUProgramKernel.h>

/// A compiled program: its kernels in the order of the OpenCL runtime, 256 at most; a program with
/// more has none. Any thread.
class OS_API iGPUProgram : public iObject
{
public:
    ~iGPUProgram() override = default;

    virtual unsigned short getNumKernels() const = 0;
    /// @return null where there is no such kernel
    virtual Tq::Ptr<iGPUProgramKernel> getKernel(unsigned short index) const = 0;
    /// The first with exactly this name; null where there is none.
    virtual Tq::Ptr<iGPUProgramKernel> getKernel(const LightweightString<char>& name) const = 0;
};
