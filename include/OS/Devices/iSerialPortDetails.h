#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/LightweightString.h>

#include <cstdint>
#include <vector>

/// What the system knows of its serial ports beyond their paths. Reached by a cast:
///
///     auto* ports = dynamic_cast<iSerialPortDetails*>(OS()->hardwareMgr());
///
/// Belongs to the manager; any thread.
class OS_API iSerialPortDetails
{
public:
    struct Details
    {
        LightweightString<wchar_t> path_; ///< as openComPort takes it
        // Of the USB device that the port belongs to; empty and 0 where there is none, and where
        // the device does not say.
        LightweightString<wchar_t> manufacturer_;
        LightweightString<wchar_t> product_;
        LightweightString<wchar_t> serialNumber_;
        std::uint16_t vendorID_ = 0;
        std::uint16_t productID_ = 0;
    };

    /// Replaces the list by the ports that are there now, in the order of their paths.
    /// @return false when the system's registry does not answer; prints nothing
    virtual bool getSerialPorts(std::vector<Details>& ports) const = 0;

protected:
    ~iSerialPortDetails() = default;
};
