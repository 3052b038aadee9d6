#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/iObject.h>
#include <OS/Primitives/Rectangle.h>

#include <cstdint>
#include <vector>

/// What machine this is, reached as OS()->systemInfo().
///
/// May be called from any thread, except getMonitorInfo and getGraphicsReport, which belong to the
/// thread of the event loop.
class OS_API iSystemInfo : public iObject
{
public:
    /// One screen of the desktop.
    struct MonitorInfo
    {
        Tq::Rectangle<int> fullRect_;    ///< logical pixels of the desktop
        Tq::Rectangle<int> desktopRect_; ///< what docks and panels leave for windows
        XY<int> physicalSizeMm_;         ///< (0, 0) when the screen does not say
        double scale_ = 1.0;             ///< device pixels for each logical pixel
        double refreshRateHz_ = 0.0;     ///< 0 when unknown
        int bitsPerPixel_ = 0;
        bool primary_ = false;
        LightweightString<wchar_t> name_;
    };

    /// Bytes. Fields that this platform does not know are 0.
    struct MemoryInfo
    {
        std::uint64_t totalPhysical_ = 0;
        std::uint64_t availablePhysical_ =
            0;                    ///< free plus inactive, deliberately not the kernel's estimate
        std::uint64_t wired_ = 0; ///< neither free, active nor inactive
        std::uint64_t totalVirtual_ = 0;     ///< always 0
        std::uint64_t availableVirtual_ = 0; ///< always 0
        std::uint64_t processResident_ = 0;
        std::uint64_t processVirtual_ = 0;
    };

    /// One thing that is known of the graphics: a name for people, and what it is.
    struct GraphicsFact
    {
        LightweightString<char> name_; ///< "Renderer": stays the same from version to version
        LightweightString<wchar_t> value_;
    };

    /// Configured processors, online or not.
    virtual unsigned int getNumberOfProcessors() = 0;
    /// Appends one record for each screen; nothing without an application object or a screen.
    virtual void getMonitorInfo(std::vector<MonitorInfo>& monitors) = 0;
    /// Memory that cannot be read gives zeros, after "Failed to get VM statistics." (or "getting
    /// page size") on standard error.
    virtual MemoryInfo getMemoryInfo() = 0;
    /// The host's name up to its first "."; empty when the system does not answer.
    virtual LightweightString<wchar_t> getComputerName() = 0;
    /// The system's release name and its version in parentheses. Without a release name, the
    /// assertion report for "false" at "OS/Mac/SystemInfo line 148" is printed and the name is
    /// empty.
    virtual LightweightString<wchar_t> getOSVersion() = 0;
    /// The vendor of the graphics driver; empty until GL has been started.
    virtual LightweightString<wchar_t> getGraphicsDriverVendor() = 0;
    /// Always empty, deliberately.
    virtual LightweightString<char> getVariable(const LightweightString<char>& section,
                                                const LightweightString<char>& name,
                                                LightweightString<char> fallback) = 0;
    /// Appends what the GL driver says of itself: "Context", "Vendor", "Renderer", "Version", "GLSL
    /// version", the limits, one "Format ..." for each kind of texture, and last one "Device ratio"
    /// for each screen. Starts GL where it has not been started, and takes the GL lock. Where GL
    /// cannot be had, "Context" says "none", after the line that tells why, and only the device
    /// ratios follow.
    virtual void getGraphicsReport(std::vector<GraphicsFact>& facts) = 0;
};
