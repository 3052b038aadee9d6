#pragma once

#include "Runtime.h"

/// Contexts that share with GL, and images made from textures: entries of OpenCL. The image is one
/// of the runtime's own; acquiring copies the texture into it, releasing copies it back, and both
/// wait. So work of GL or OpenCL that a caller forgot to finish goes unnoticed.
namespace SharedTextures {

using Notify = void(CL_CALLBACK*)(const char*, const void*, std::size_t, void*);

cl_context CL_API_CALL createContext(const cl_context_properties* properties, cl_uint count,
                                     const cl_device_id* devices, Notify notify, void* user,
                                     cl_int* error);
cl_int CL_API_CALL retainContext(cl_context context);
cl_int CL_API_CALL releaseContext(cl_context context);
cl_mem CL_API_CALL createFromGLTexture(cl_context context, cl_mem_flags flags, cl_GLenum target,
                                       cl_GLint level, cl_GLuint texture, cl_int* error);
cl_int CL_API_CALL acquire(cl_command_queue queue, cl_uint count, const cl_mem* mems,
                           cl_uint numWait, const cl_event* wait, cl_event* event);
cl_int CL_API_CALL release(cl_command_queue queue, cl_uint count, const cl_mem* mems,
                           cl_uint numWait, const cl_event* wait, cl_event* event);
/// Remarks on a last release that comes after its texture has gone.
cl_int CL_API_CALL releaseMem(cl_mem mem);
cl_int CL_API_CALL getGLObjectInfo(cl_mem mem, cl_gl_object_type* type, cl_GLuint* name);

} // namespace SharedTextures
