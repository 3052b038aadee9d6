#pragma once

#include "OS/Mac/Compute/OpenCLContextBase.h"

/// A compute context that shares objects with the library's GL contexts.
class OpenCLContext final : public OpenCLContextBase
{
public:
    /// Makes a context on the first GPU that takes one, in the order of the runtimes and their
    /// devices. It shares with GL where GL is started, or a GL context is current on the thread;
    /// a device that cannot share is then no candidate. A vendor called exactly "Intel", in any
    /// case, is passed over, deliberately. Takes the GL lock.
    /// @return null, after the timed log line "OpenCLContext::make() : Failed to find any CL
    /// platforms"
    ///         or "OpenCLContext::make() : Failed to create a cl_context"; without a line where the
    ///         runtimes can be counted but not listed, deliberately
    static Tq::Ptr<iOpenCLContext> make();

    OpenCLContext(CLContext context, cl_device_id device);

    Tq::Ptr<iGPUProgram> compileProgram(const std::vector<LightweightString<char>>& lines) override;
};
