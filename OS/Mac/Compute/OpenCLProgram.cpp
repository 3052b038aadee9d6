#include "OS/Mac/Compute/OpenCLProgram.h"

#include "OS/Mac/Compute/OpenCLProgramKernel.h"

#include <utility>

Tq::Ptr<iGPUProgram> OpenCLProgram::make(const iOpenCLContext& context,
                                         const std::vector<LightweightString<char>>& lines)
{
    CLProgram program = createImpl(context.getImpl(), context.getDevice(), lines);
    if (!program)
        return {};
    return new OpenCLProgram(context, std::move(program));
}

OpenCLProgram::OpenCLProgram(const iOpenCLContext& context, CLProgram program)
    : OpenCLProgramBase(std::move(program))
{
    makeKernels<OpenCLProgramKernel>(&context);
}
