#pragma once

#include "OS/Mac/Compute/OpenCLProgramBase.h"
#include "OS/Mac/Compute/OpenCLProgramKernel.h"

/// A program whose kernels may work on GL images.
class GLCLProgram final : public OpenCLProgramBase
{
public:
    class Kernel final : public OpenCLProgramKernel
    {
    public:
        using OpenCLProgramKernel::OpenCLProgramKernel;

        // What is acquired from GL the base class finds out.
        bool execute1D(unsigned int n) override { return OpenCLProgramKernel::execute1D(n); }
        bool execute2D(unsigned int width, unsigned int height) override
        {
            return OpenCLProgramKernel::execute2D(width, height);
        }
    };

    /// As OpenCLProgramBase::createImpl.
    static Tq::Ptr<iGPUProgram> make(const iOpenCLContext& context,
                                     const std::vector<LightweightString<char>>& lines);

    GLCLProgram(const iOpenCLContext& context, CLProgram program);
};
