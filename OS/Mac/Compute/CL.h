#pragma once

// The OpenCL functions of version 1.2, the one way to them; texture buffers are made by the older
// entry, which every driver has.
#ifndef CL_TARGET_OPENCL_VERSION
#define CL_TARGET_OPENCL_VERSION 120
#endif
#ifndef CL_USE_DEPRECATED_OPENCL_1_1_APIS
#define CL_USE_DEPRECATED_OPENCL_1_1_APIS
#endif
#include <CL/cl.h>
#include <CL/cl_gl.h>
