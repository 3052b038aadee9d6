#pragma once

#include "OS/Mac/Compute/CLHandle.h"
#include "OS/Mac/Compute/OpenCLBuffer.h"

#include <OS/Compute/iGPUProgramKernel.h>
#include <OS/Compute/iOpenCLContext.h>

#include <cstdint>
#include <vector>

/// iGPUProgramKernel on an OpenCL kernel.
class OpenCLProgramKernel : public iGPUProgramKernel
{
public:
    /// The work-group size is the low 16 bits of the device's largest, deliberately, whatever the
    /// kernel's own is; 256 where those are 0 or the device does not say.
    OpenCLProgramKernel(const Tq::Ptr<const iOpenCLContext>& context, CLKernel kernel);

    LightweightString<char> getName() const override { return name_; }
    bool setArg(unsigned char index, short value) override;
    bool setArg(unsigned char index, float value) override;
    bool setArg(unsigned char index, const Tq::Ptr<iGPUBuffer>& buffer) override;
    bool execute1D(unsigned int n) override;
    bool execute2D(unsigned int width, unsigned int height) override;

private:
    void readName();
    void readWorkGroupSize();
    bool isListed(cl_mem mem) const;
    void keep(unsigned char index, OpenCLBuffer* buffer);
    bool execute(cl_uint dimensions, const unsigned int* sizes, std::size_t localSize,
                 const char* operation);
    bool listsImages() const;
    void forgetListed();

    Tq::Ptr<const iOpenCLContext> context_;
    CLKernel kernel_;
    LightweightString<char> name_;
    std::uint16_t workGroupSize_ = 256;
    cl_mem buffersToAcquire_[16] = {};
    unsigned char numBuffersToAcquire_ = 0;
    // OpenCL does not count what is set as an argument.
    Tq::Ptr<OpenCLBuffer> listed_[16]; ///< those of buffersToAcquire_
    /// By index, until they are replaced; without those made from images, which go before their
    /// texture.
    std::vector<Tq::Ptr<OpenCLBuffer>> arguments_;
};
