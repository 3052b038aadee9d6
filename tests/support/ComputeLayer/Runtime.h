#pragma once

#define CL_TARGET_OPENCL_VERSION 300
#define CL_USE_DEPRECATED_OPENCL_1_1_APIS
#include <CL/cl.h>
#include <CL/cl_gl.h>
#include <CL/cl_icd.h>

#include <cstring>
#include <string>

/// The entries of the runtimes below the layer.
extern cl_icd_dispatch runtime;

/// Answers a query as OpenCL does.
inline cl_int answer(const void* value, std::size_t size, std::size_t room, void* out,
                     std::size_t* needed)
{
    if (needed)
        *needed = size;
    if (out && room < size)
        return CL_INVALID_VALUE;
    if (out)
        std::memcpy(out, value, size);
    return CL_SUCCESS;
}

inline cl_int answer(const std::string& text, std::size_t room, void* out, std::size_t* needed)
{
    return answer(text.c_str(), text.size() + 1, room, out, needed);
}

/// What a call that makes something returns where it does not.
inline std::nullptr_t refuse(cl_int* error, cl_int with)
{
    if (error)
        *error = with;
    return nullptr;
}
