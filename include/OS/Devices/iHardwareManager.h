#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Core/iObject.h>
#include <OS/Devices/iComPort.h>
#include <OS/Devices/iComPortReceiver.h>
#include <OS/Devices/iDeviceEventHandler.h>
#include <OS/Devices/iFirewireDevice.h>

#include <map>

/// Devices attached to the machine, reached as OS()->hardwareMgr(). More about serial ports is
/// behind iSerialPortDetails. Any thread, registerForDeviceEvents excepted.
class OS_API iHardwareManager : public iObject
{
public:
    /// Adds one entry for each serial port, key and value both the path of its device; what is in
    /// the map stays. A registry that does not answer is reported ("IOServiceMatching returned a
    /// NULL dictionary.\n", "IOServiceGetMatchingServices returned %d\n" and an assertion) and adds
    /// nothing.
    virtual void
    getComPorts(std::map<LightweightString<wchar_t>, LightweightString<wchar_t>>& ports) const = 0;

    /// Opens a serial port for this process alone, and starts to read from it; see iComPort.
    ///
    /// A port that is in use is refused: with "Error opening serial port %s - %s(%d).\n", which
    /// any other failure to open prints, too, or, to a process with the privilege to open it all
    /// the same, with "Error setting TIOCEXCL on %s - %s(%d).\n". After the latter the descriptor
    /// is not closed, deliberately.
    ///
    /// @param receiver null gives null, without touching the device
    /// @return null when the port cannot be had
    /// @throw std::runtime_error when the system has no locks to give
    virtual Tq::Ptr<iComPort> openComPort(const LightweightString<wchar_t>& path,
                                          Tq::Ptr<iComPortReceiver> receiver) const = 0;

    /// Always null: FireWire devices are not supported.
    virtual Tq::Ptr<iFirewireDevice>
    getFirewireDevice(const LightweightString<wchar_t>& name) const = 0;

    /// Keeps the handler, in place of any earlier one; nothing ever calls it, deliberately. On one
    /// thread at a time.
    virtual void registerForDeviceEvents(Tq::Ptr<iDeviceEventHandler> handler) = 0;
};
