#include "OS/Mac/Compute/GLCLProgram.h"

#include <utility>

Tq::Ptr<iGPUProgram> GLCLProgram::make(const iOpenCLContext& context,
                                       const std::vector<LightweightString<char>>& lines)
{
    CLProgram program = createImpl(context.getImpl(), context.getDevice(), lines);
    if (!program)
        return {};
    return new GLCLProgram(context, std::move(program));
}

GLCLProgram::GLCLProgram(const iOpenCLContext& context, CLProgram program)
    : OpenCLProgramBase(std::move(program))
{
    makeKernels<Kernel>(&context);
}
