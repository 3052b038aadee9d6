#include "OS/Mac/Compute/OpenCLProgramBase.h"

#include "OS/Mac/Core/Assertion.h"

#include <algorithm>
#include <string>
#include <utility>

namespace {

constexpr cl_uint kMostKernels = 256;
constexpr std::size_t kLogBytes = 10240; // the terminator included
constexpr std::size_t kLongestLog = std::size_t{16} << 20;

// A driver refuses to write a log that is longer than the buffer, so it is read whole, then cut.
std::string buildLog(cl_program program, cl_device_id device)
{
    std::size_t size = 0;
    clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, 0, nullptr, &size);
    std::string log(std::clamp(size, kLogBytes, kLongestLog), '\0');
    clGetProgramBuildInfo(program, device, CL_PROGRAM_BUILD_LOG, log.size(), log.data(), nullptr);
    log.resize(kLogBytes - 1);
    log.resize(log.find('\0') == std::string::npos ? log.size() : log.find('\0'));
    return log;
}

void printBuildLog(const std::string& log)
{
    const bool open = !log.empty() && log.back() != '\n';
    OSInternal::printLine("---------------- OpenCLProgramBase::make() : clBuildProgram() failed "
                          "----------------\n%s%s"
                          "------------------------------------------------------------------------"
                          "-------------\n",
                          log.c_str(), open ? "\n" : "");
}

} // namespace

OpenCLProgramBase::OpenCLProgramBase(CLProgram program) : program_(std::move(program)) {}

CLProgram OpenCLProgramBase::createImpl(cl_context context, cl_device_id device,
                                        const std::vector<LightweightString<char>>& lines)
{
    std::string source;
    for (const LightweightString<char>& line : lines)
        source.append(line.view()).push_back('\n');
    const char* text = source.data();
    const std::size_t length = source.size();

    cl_int error = CL_SUCCESS;
    CLProgram program(clCreateProgramWithSource(context, 1, &text, &length, &error));
    if (!program) {
        OSInternal::printLine(
            "OpenCLProgramBase::make() : clCreateProgramWithSource() failed (%d)\n", error);
        return {};
    }
    if (clBuildProgram(program.get(), 1, &device, "-cl-fast-relaxed-math", nullptr, nullptr) !=
        CL_SUCCESS) {
        printBuildLog(buildLog(program.get(), device));
        static_cast<void>(program.release());
        return {};
    }
    return program;
}

std::vector<CLKernel> OpenCLProgramBase::createKernels() const
{
    cl_kernel handles[kMostKernels] = {};
    cl_uint count = 0;
    const cl_int error = clCreateKernelsInProgram(program_.get(), kMostKernels, handles, &count);
    if (error != CL_SUCCESS) {
        OSInternal::printLine("OpenCLProgramBase::OpenCLProgramBase() : clCreateKernelsInProgram() "
                              "failed (%d)\n",
                              error);
        return {};
    }
    return std::vector<CLKernel>(handles, handles + std::min(count, kMostKernels));
}

unsigned short OpenCLProgramBase::getNumKernels() const
{
    return static_cast<unsigned short>(kernels_.size());
}

Tq::Ptr<iGPUProgramKernel> OpenCLProgramBase::getKernel(unsigned short index) const
{
    return index < kernels_.size() ? kernels_[index] : nullptr;
}

Tq::Ptr<iGPUProgramKernel> OpenCLProgramBase::getKernel(const LightweightString<char>& name) const
{
    const auto found = std::find_if(kernels_.begin(), kernels_.end(),
                                    [&](const auto& kernel) { return kernel->getName() == name; });
    return found != kernels_.end() ? *found : nullptr;
}
