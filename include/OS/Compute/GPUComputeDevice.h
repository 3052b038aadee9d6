#pragma once

#include <OS/Core/LightweightString.h>

/// One compute device of this machine and what becomes of it when a compute context is made.
struct GPUComputeDevice
{
    LightweightString<wchar_t> platform_; ///< the runtime that offers it
    LightweightString<wchar_t> device_;
    LightweightString<wchar_t> vendor_;
    LightweightString<wchar_t> version_; ///< of OpenCL
    LightweightString<wchar_t> driver_;  ///< the driver's version
    bool gpu_ = false;
    bool sharing_ = false; ///< the driver says that it can share with GL
    bool chosen_ = false;  ///< a context made now would be on this device
    /// Why it is not chosen; empty where it is. For people: texts may change.
    LightweightString<wchar_t> reason_;
};
