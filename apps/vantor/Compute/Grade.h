#pragma once

#include "Compute/ComputeDevice.h"

#include <OS/OpenGL/iGPUImage.h>

namespace Vantor {

/// What a grade does to a picture.
struct GradeValues
{
    float lift = 0.0f;
    float gamma = 1.0f;
    float gain = 1.0f;
    float saturation = 1.0f;

    friend bool operator==(const GradeValues&, const GradeValues&) = default;
};

/// Corrects the colours of images on the GPU by a kernel. For one thread.
class Grade
{
public:
    /// @return null where nothing computes here
    static std::unique_ptr<Grade> make();

    /// A corrected copy. @return null where it could not be made
    Tq::Ptr<iGPUImage> apply(const Tq::Ptr<iGPUImage>& image, const GradeValues& values);

private:
    Grade() = default;
    std::shared_ptr<ComputeDevice> device_;
    Tq::Ptr<iGPUProgramKernel> kernel_;
};

} // namespace Vantor
