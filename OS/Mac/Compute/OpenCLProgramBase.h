#pragma once

#include "OS/Mac/Compute/CLHandle.h"

#include <OS/Compute/iGPUProgram.h>
#include <OS/Compute/iOpenCLContext.h>

/// A program and its kernels, whose class the derived class chooses.
class OpenCLProgramBase : public iGPUProgram
{
public:
    unsigned short getNumKernels() const override;
    Tq::Ptr<iGPUProgramKernel> getKernel(unsigned short index) const override;
    Tq::Ptr<iGPUProgramKernel> getKernel(const LightweightString<char>& name) const override;

protected:
    explicit OpenCLProgramBase(CLProgram program);

    /// Compiles lines of source for a device.
    /// @return null, after "OpenCLProgramBase::make() : clCreateProgramWithSource() failed (%d)\n"
    /// or
    ///         the build log between its two lines. A program that was not built is not released,
    ///         deliberately.
    static CLProgram createImpl(cl_context context, cl_device_id device,
                                const std::vector<LightweightString<char>>& lines);

    /// Makes an object for each kernel. A refusal prints
    /// "OpenCLProgramBase::OpenCLProgramBase() : clCreateKernelsInProgram() failed (%d)\n".
    template <class Kernel>
    void makeKernels(const Tq::Ptr<const iOpenCLContext>& context)
    {
        for (CLKernel& kernel : createKernels())
            kernels_.push_back(new Kernel(context, std::move(kernel)));
    }

private:
    std::vector<CLKernel> createKernels() const;

    CLProgram program_;
    std::vector<Tq::Ptr<iGPUProgramKernel>> kernels_;
};
