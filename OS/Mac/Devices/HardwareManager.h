#pragma once

#include "OS/Host/Serial/SerialRegistry.h"

#include <OS/Devices/iHardwareManager.h>
#include <OS/Devices/iSerialPortDetails.h>

/// iHardwareManager on the registry of Host/Serial, which is opened and closed by each listing.
class HardwareManager final : public iHardwareManager, public iSerialPortDetails
{
public:
    using Registry = std::unique_ptr<Host::SerialRegistry>;

    void getComPorts(
        std::map<LightweightString<wchar_t>, LightweightString<wchar_t>>& ports) const override;
    Tq::Ptr<iComPort> openComPort(const LightweightString<wchar_t>& path,
                                  Tq::Ptr<iComPortReceiver> receiver) const override;
    Tq::Ptr<iFirewireDevice>
    getFirewireDevice(const LightweightString<wchar_t>& name) const override;
    void registerForDeviceEvents(Tq::Ptr<iDeviceEventHandler> handler) override;

    bool getSerialPorts(std::vector<Details>& ports) const override;

    /// Asks the registry for the serial ports. A failure is printed.
    /// @return 0, or the registry's status
    static int FindPorts(std::vector<Host::SerialPort>* ports);

    /// For tests: another registry. Null brings the system's back.
    static void setRegistry(Registry (*open)());

private:
    Tq::Ptr<iDeviceEventHandler> deviceEventHandler_;
};
