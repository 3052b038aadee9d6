#pragma once

#include "Compute/ComputeDevice.h"
#include "Model/ScopeReading.h"

#include <OS/OpenGL/iGPUImage.h>

namespace Vantor {

/// Counts the pixels of images on the GPU, there. For one thread.
class ScopeMeter
{
public:
    /// @param trouble why it cannot be made, in one line, where the answer is null
    static std::unique_ptr<ScopeMeter> make(Text& trouble);

    /// @return null where it could not be measured
    std::shared_ptr<const ScopeCounts> measure(const Tq::Ptr<iGPUImage>& image);

private:
    static constexpr int kColumns = 320;

    ScopeMeter() = default;
    bool count(const Tq::Ptr<iGPUImage>& image);

    std::shared_ptr<ComputeDevice> device_;
    Tq::Ptr<iGPUProgramKernel> clear_;
    Tq::Ptr<iGPUProgramKernel> measure_;
    Tq::Ptr<iGPUBuffer> waveform_;
    Tq::Ptr<iGPUBuffer> vectors_;
    Tq::Ptr<iGPUBuffer> histogram_;
};

} // namespace Vantor
