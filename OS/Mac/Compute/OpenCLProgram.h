#pragma once

#include "OS/Mac/Compute/OpenCLProgramBase.h"

/// A program of plain kernels.
class OpenCLProgram final : public OpenCLProgramBase
{
public:
    /// As OpenCLProgramBase::createImpl.
    static Tq::Ptr<iGPUProgram> make(const iOpenCLContext& context,
                                     const std::vector<LightweightString<char>>& lines);

    OpenCLProgram(const iOpenCLContext& context, CLProgram program);
};
