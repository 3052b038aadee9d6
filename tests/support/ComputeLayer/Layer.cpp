// The entries that the loader calls, and the table that it puts before the runtime's.
#include "DressedDevices.h"
#include "LayerState.h"
#include "Runtime.h"
#include "SharedTextures.h"

#include <CL/cl_layer.h>

#include <algorithm>
#include <tuple>
#include <type_traits>

cl_icd_dispatch runtime;

namespace {

cl_icd_dispatch dressed; // the runtime's entries, and ours in place of some
cl_icd_dispatch hooked;  // those, each behind a Hook

// What a call does to the number of references.
struct Count
{
    ComputeLayer::Kind kind = ComputeLayer::eKinds;
    int change = 0;
};

// In front of an entry: notes the call, lets it fail where a test says so, and counts.
template <auto Member>
struct Hook;

template <class Result, class... Arguments,
          Result (CL_API_CALL* cl_icd_dispatch::*Member)(Arguments...)>
struct Hook<Member>
{
    static inline const char* name = nullptr;
    static inline Count count;

    static Result CL_API_CALL call(Arguments... arguments)
    {
        const cl_int failure = LayerState::get().enter(name);
        if (failure == CL_SUCCESS || count.change < 0) {
            const Result result = (dressed.*Member)(arguments...);
            if (succeeded(result) && count.change != 0)
                LayerState::get().count(count.kind, count.change);
            if (failure == CL_SUCCESS)
                return result;
        }
        if constexpr (std::is_same_v<Result, cl_int>)
            return failure;
        else // what makes something takes the place for the error last
            return refuse(std::get<sizeof...(Arguments) - 1>(std::tie(arguments...)), failure);
    }

private:
    static bool succeeded(Result result)
    {
        if constexpr (std::is_same_v<Result, cl_int>)
            return result == CL_SUCCESS;
        else
            return result != nullptr;
    }
};

template <auto Member>
void hook(const char* name, Count count = {})
{
    Hook<Member>::name = name;
    Hook<Member>::count = count;
    hooked.*Member = &Hook<Member>::call;
}

cl_int CL_API_CALL createKernels(cl_program program, cl_uint room, cl_kernel* kernels,
                                 cl_uint* count)
{
    cl_uint made = 0;
    const cl_int result = runtime.clCreateKernelsInProgram(program, room, kernels, &made);
    if (count)
        *count = made;
    if (result == CL_SUCCESS && kernels)
        LayerState::get().count(ComputeLayer::eKernel, static_cast<int>(made));
    return result;
}

cl_int CL_API_CALL enqueueKernel(cl_command_queue queue, cl_kernel kernel, cl_uint dimensions,
                                 const std::size_t* offset, const std::size_t* global,
                                 const std::size_t* local, cl_uint numWait, const cl_event* wait,
                                 cl_event* event)
{
    for (cl_uint i = 0; i < dimensions; ++i)
        LayerState::get().remark(std::to_string(global[i]) + '/' +
                                 std::to_string(local ? local[i] : 0));
    return runtime.clEnqueueNDRangeKernel(queue, kernel, dimensions, offset, global, local, numWait,
                                          wait, event);
}

// One runtime does not wait here: when the process then ends, its compiler is torn down in
// mid-work.
cl_int CL_API_CALL releaseQueue(cl_command_queue queue)
{
    runtime.clFinish(queue);
    return runtime.clReleaseCommandQueue(queue);
}

void dress()
{
    dressed = runtime;
    dressed.clGetDeviceIDs = DressedDevices::getDeviceIDs;
    dressed.clGetDeviceInfo = DressedDevices::getDeviceInfo;
    dressed.clCreateContext = SharedTextures::createContext;
    dressed.clRetainContext = SharedTextures::retainContext;
    dressed.clReleaseContext = SharedTextures::releaseContext;
    dressed.clCreateFromGLTexture = SharedTextures::createFromGLTexture;
    dressed.clCreateFromGLTexture2D = SharedTextures::createFromGLTexture;
    dressed.clEnqueueAcquireGLObjects = SharedTextures::acquire;
    dressed.clEnqueueReleaseGLObjects = SharedTextures::release;
    dressed.clReleaseMemObject = SharedTextures::releaseMem;
    dressed.clGetGLObjectInfo = SharedTextures::getGLObjectInfo;
    dressed.clCreateKernelsInProgram = createKernels;
    dressed.clEnqueueNDRangeKernel = enqueueKernel;
    dressed.clReleaseCommandQueue = releaseQueue;
}

void hookObjects()
{
    using Table = cl_icd_dispatch;
    using Layer = ComputeLayer;
    hook<&Table::clCreateContext>("clCreateContext", {Layer::eContext, 1});
    hook<&Table::clRetainContext>("clRetainContext", {Layer::eContext, 1});
    hook<&Table::clReleaseContext>("clReleaseContext", {Layer::eContext, -1});
    hook<&Table::clCreateCommandQueue>("clCreateCommandQueue", {Layer::eQueue, 1});
    hook<&Table::clRetainCommandQueue>("clRetainCommandQueue", {Layer::eQueue, 1});
    hook<&Table::clReleaseCommandQueue>("clReleaseCommandQueue", {Layer::eQueue, -1});
    hook<&Table::clCreateBuffer>("clCreateBuffer", {Layer::eMem, 1});
    hook<&Table::clCreateFromGLTexture2D>("clCreateFromGLTexture2D", {Layer::eMem, 1});
    hook<&Table::clRetainMemObject>("clRetainMemObject", {Layer::eMem, 1});
    hook<&Table::clReleaseMemObject>("clReleaseMemObject", {Layer::eMem, -1});
    hook<&Table::clCreateProgramWithSource>("clCreateProgramWithSource", {Layer::eProgram, 1});
    hook<&Table::clRetainProgram>("clRetainProgram", {Layer::eProgram, 1});
    hook<&Table::clReleaseProgram>("clReleaseProgram", {Layer::eProgram, -1});
    hook<&Table::clCreateKernelsInProgram>("clCreateKernelsInProgram");
    hook<&Table::clRetainKernel>("clRetainKernel", {Layer::eKernel, 1});
    hook<&Table::clReleaseKernel>("clReleaseKernel", {Layer::eKernel, -1});
}

void hookTheRest()
{
    using Table = cl_icd_dispatch;
    hook<&Table::clGetPlatformIDs>("clGetPlatformIDs");
    hook<&Table::clGetPlatformInfo>("clGetPlatformInfo");
    hook<&Table::clGetDeviceIDs>("clGetDeviceIDs");
    hook<&Table::clGetDeviceInfo>("clGetDeviceInfo");
    hook<&Table::clGetMemObjectInfo>("clGetMemObjectInfo");
    hook<&Table::clGetGLObjectInfo>("clGetGLObjectInfo");
    hook<&Table::clBuildProgram>("clBuildProgram");
    hook<&Table::clGetProgramBuildInfo>("clGetProgramBuildInfo");
    hook<&Table::clGetKernelInfo>("clGetKernelInfo");
    hook<&Table::clGetKernelWorkGroupInfo>("clGetKernelWorkGroupInfo");
    hook<&Table::clSetKernelArg>("clSetKernelArg");
    hook<&Table::clEnqueueNDRangeKernel>("clEnqueueNDRangeKernel");
    hook<&Table::clEnqueueReadBuffer>("clEnqueueReadBuffer");
    hook<&Table::clEnqueueAcquireGLObjects>("clEnqueueAcquireGLObjects");
    hook<&Table::clEnqueueReleaseGLObjects>("clEnqueueReleaseGLObjects");
    hook<&Table::clFlush>("clFlush");
    hook<&Table::clFinish>("clFinish");
}

} // namespace

extern "C" {

__attribute__((visibility("default"))) ComputeLayer* computeLayer()
{
    return &LayerState::get();
}

__attribute__((visibility("default"))) cl_int CL_API_CALL clGetLayerInfo(cl_layer_info what,
                                                                         std::size_t room,
                                                                         void* out,
                                                                         std::size_t* needed)
{
    const cl_layer_api_version version = CL_LAYER_API_VERSION_100;
    if (what != CL_LAYER_API_VERSION)
        return CL_INVALID_VALUE;
    return answer(&version, sizeof version, room, out, needed);
}

__attribute__((visibility("default"))) cl_int CL_API_CALL clInitLayer(cl_uint count,
                                                                      const cl_icd_dispatch* below,
                                                                      cl_uint* ownCount,
                                                                      const cl_icd_dispatch** own)
{
    const std::size_t entries = sizeof hooked / sizeof(void*);
    std::memcpy(static_cast<void*>(&runtime), below,
                std::min<std::size_t>(count, entries) * sizeof(void*));
    dress();
    hooked = dressed;
    hookObjects();
    hookTheRest();
    *ownCount = static_cast<cl_uint>(entries);
    *own = &hooked;
    return CL_SUCCESS;
}
}
