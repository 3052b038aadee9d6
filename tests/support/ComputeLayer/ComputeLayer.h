#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// A layer for the OpenCL loader: lets a runtime for processors look like GPUs that share with GL,
/// counts what is made and released, and fails calls on demand. It is the real runtime that
/// compiles and computes, and real GL textures that are read and written, by copies at acquire and
/// release.
///
/// The loader reads OPENCL_LAYERS at a process's first call of OpenCL. A test then talks to the
/// layer through this class, from any thread.
class ComputeLayer
{
public:
    enum Kind
    {
        eContext,
        eQueue,
        eMem,
        eProgram,
        eKernel,
        eKinds
    };

    struct Device
    {
        std::string vendor = "ACME";
        std::size_t largestGroup = 256; ///< 0: the runtime's own
        bool gpu = true;
        bool shares = true;
        bool ordersWithGL = false; ///< has the extension for events of GL
    };

    /// The layer of this process; null where OPENCL_LAYERS names none.
    static ComputeLayer* instance();

    virtual ~ComputeLayer() = default;

    /// Forgets failures, devices and calls; what is alive stays counted.
    virtual void reset() = 0;
    /// What the devices of each runtime look like, in their order; those behind the last like it.
    virtual void setDevices(const std::vector<Device>& devices) = 0;

    /// Lets a call of this name fail from now on. A release that fails has released all the same.
    virtual void fail(const std::string& call, int error) = 0;
    /// Lets only the n-th call from now on fail, whichever it is; from 1.
    virtual void failNth(int n, int error) = 0;

    /// The calls since reset(), with what else is known of them: "clEnqueueNDRangeKernel 1024/256",
    /// "clCreateContext GLX".
    virtual std::vector<std::string> calls() const = 0;
    /// Adds a line of a test's own to the calls.
    virtual void note(const std::string& line) = 0;
    /// How many references of the process's own exist.
    virtual int alive(Kind kind) const = 0;
};
