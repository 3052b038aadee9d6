#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Host {

/// One serial port of the machine. Texts are UTF-8 as the system has them, unchecked.
struct SerialPort
{
    std::string device; ///< such as "/dev/ttyUSB0"
    // Of the USB device behind it; empty and 0 without one.
    std::string manufacturer;
    std::string product;
    std::string serialNumber;
    std::uint16_t vendorID = 0;
    std::uint16_t productID = 0;
};

/// The system's registry of devices, as far as serial ports go. One thread at a time.
class SerialRegistry
{
public:
    virtual ~SerialRegistry() = default;

    /// Appends the ports that are there now.
    /// @return 0, or a negative errno when the registry does not answer
    virtual int list(std::vector<SerialPort>& ports) = 0;
};

/// @return null when the system has no registry to give
std::unique_ptr<SerialRegistry> openSerialRegistry();

} // namespace Host
