#pragma once

#include "Model/Text.h"

#include <OS/Compute/iGPUComputeContext.h>

#include <memory>

namespace Vantor {

/// The one compute context of the program: an image keeps the memory that the first context made of
/// it. Any thread.
class ComputeDevice
{
public:
    /// The one that is held by anybody, else a new one: hold it as long as there are images.
    static std::shared_ptr<ComputeDevice> instance();

    /// Null where nothing on this machine computes.
    const Tq::Ptr<iGPUComputeContext>& context() const { return context_; }
    /// Compiles one of the product's files of kernels. @return null where it is missing or does not
    /// compile
    Tq::Ptr<iGPUProgram> compile(const wchar_t* file) const;

private:
    ComputeDevice();
    Tq::Ptr<iGPUComputeContext> context_;
};

/// One line for where nothing computes.
extern const wchar_t* const kNoComputeDevice;

} // namespace Vantor
