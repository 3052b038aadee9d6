#pragma once

#include "OS/Mac/Compute/CL.h"

#include <memory>

template <auto release>
struct CLReleaser
{
    template <class T>
    void operator()(T* handle) const
    {
        release(handle);
    }
};

// Owners of OpenCL's counted handles: each holds one count.
using CLContext = std::unique_ptr<_cl_context, CLReleaser<&clReleaseContext>>;
using CLQueue = std::unique_ptr<_cl_command_queue, CLReleaser<&clReleaseCommandQueue>>;
using CLMem = std::unique_ptr<_cl_mem, CLReleaser<&clReleaseMemObject>>;
using CLProgram = std::unique_ptr<_cl_program, CLReleaser<&clReleaseProgram>>;
using CLKernel = std::unique_ptr<_cl_kernel, CLReleaser<&clReleaseKernel>>;
