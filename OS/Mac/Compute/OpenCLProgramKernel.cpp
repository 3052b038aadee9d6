#include "OS/Mac/Compute/OpenCLProgramKernel.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr std::size_t roundedUp(unsigned int size, std::size_t multiple)
{
    return (size + multiple - 1) / multiple * multiple;
}

bool reportArgument(cl_int error)
{
    if (error != CL_SUCCESS)
        OSInternal::printLine("OpenCLProgramKernel::setArg() : clSetKernelArg() failed (%d)\n",
                              error);
    return error == CL_SUCCESS;
}

} // namespace

OpenCLProgramKernel::OpenCLProgramKernel(const Tq::Ptr<const iOpenCLContext>& context,
                                         CLKernel kernel)
    : context_(context), kernel_(std::move(kernel))
{
    readName();
    readWorkGroupSize();
}

void OpenCLProgramKernel::readName()
{
    char name[256] = "";
    clGetKernelInfo(kernel_.get(), CL_KERNEL_FUNCTION_NAME, sizeof name - 1, name, nullptr);
    name_ = name;
}

void OpenCLProgramKernel::readWorkGroupSize()
{
    std::size_t largest = 0;
    if (clGetDeviceInfo(context_->getDevice(), CL_DEVICE_MAX_WORK_GROUP_SIZE, sizeof largest,
                        &largest, nullptr) == CL_SUCCESS &&
        static_cast<std::uint16_t>(largest) != 0)
        workGroupSize_ = static_cast<std::uint16_t>(largest);
    // The kernel's own size is asked for, and the device's stays in force, deliberately.
    std::size_t own = 0;
    clGetKernelWorkGroupInfo(kernel_.get(), context_->getDevice(), CL_KERNEL_WORK_GROUP_SIZE,
                             sizeof own, &own, nullptr);
}

bool OpenCLProgramKernel::setArg(unsigned char index, short value)
{
    return reportArgument(clSetKernelArg(kernel_.get(), index, sizeof value, &value));
}

bool OpenCLProgramKernel::setArg(unsigned char index, float value)
{
    const cl_int error = clSetKernelArg(kernel_.get(), index, sizeof value, &value);
    if (error != CL_INVALID_ARG_INDEX)
        return reportArgument(error);
    cl_uint count = 0;
    clGetKernelInfo(kernel_.get(), CL_KERNEL_NUM_ARGS, sizeof count, &count, nullptr);
    OSInternal::printLine(
        "OpenCLProgramKernel::setArg() : invalid argumment(%d supplied, %d max)\n", index,
        static_cast<int>(count));
    return false;
}

bool OpenCLProgramKernel::setArg(unsigned char index, const Tq::Ptr<iGPUBuffer>& buffer)
{
    auto* const clBuffer = dynamic_cast<OpenCLBuffer*>(buffer.get());
    if (!clBuffer)
        return false;
    const cl_mem mem = clBuffer->getImpl();
    const bool listed = isListed(mem);
    if (!listed && numBuffersToAcquire_ == std::size(buffersToAcquire_))
        return reportArgument(CL_OUT_OF_RESOURCES);
    if (!reportArgument(clSetKernelArg(kernel_.get(), index, sizeof mem, &mem)))
        return false;
    if (!listed) {
        buffersToAcquire_[numBuffersToAcquire_] = mem;
        listed_[numBuffersToAcquire_++] = clBuffer;
    }
    keep(index, clBuffer->isFromImage() ? nullptr : clBuffer);
    return true;
}

bool OpenCLProgramKernel::isListed(cl_mem mem) const
{
    const cl_mem* const end = buffersToAcquire_ + numBuffersToAcquire_;
    return std::find(buffersToAcquire_, end, mem) != end;
}

void OpenCLProgramKernel::keep(unsigned char index, OpenCLBuffer* buffer)
{
    if (arguments_.size() <= index)
        arguments_.resize(index + 1u);
    if (arguments_[index].get() != buffer)
        arguments_[index] = buffer;
}

bool OpenCLProgramKernel::execute1D(unsigned int n)
{
    return execute(1, &n, workGroupSize_, "execute1D");
}

bool OpenCLProgramKernel::execute2D(unsigned int width, unsigned int height)
{
    const unsigned int sizes[] = {width, height};
    const auto side = static_cast<std::uint16_t>(std::sqrt(static_cast<double>(workGroupSize_)));
    return execute(2, sizes, side, "execute2D");
}

bool OpenCLProgramKernel::execute(cl_uint dimensions, const unsigned int* sizes,
                                  std::size_t localSize, const char* operation)
{
    const std::size_t local[] = {localSize, localSize};
    std::size_t global[2] = {};
    for (cl_uint i = 0; i < dimensions; ++i)
        global[i] = roundedUp(sizes[i], localSize);

    const cl_command_queue queue = context_->getCommandQueue();
    const unsigned char toAcquire = listsImages() ? numBuffersToAcquire_ : 0;
    context_->prepareBuffers(buffersToAcquire_, toAcquire);
    const cl_int error = clEnqueueNDRangeKernel(queue, kernel_.get(), dimensions, nullptr, global,
                                                local, 0, nullptr, nullptr);
    context_->unPrepareBuffers(buffersToAcquire_, toAcquire);
    if (error == CL_SUCCESS)
        clFlush(queue);
    else
        OSInternal::printLine("OpenCLProgramKernel::%s() : clEnqueueNDRangeKernel() failed (%d)\n",
                              operation, error);
    forgetListed();
    return error == CL_SUCCESS;
}

// Where there are none, nobody needs to be asked which of the buffers are of GL.
bool OpenCLProgramKernel::listsImages() const
{
    return std::any_of(listed_, listed_ + numBuffersToAcquire_,
                       [](const auto& buffer) { return buffer->isFromImage(); });
}

void OpenCLProgramKernel::forgetListed()
{
    while (numBuffersToAcquire_ > 0)
        listed_[--numBuffersToAcquire_].reset();
}
