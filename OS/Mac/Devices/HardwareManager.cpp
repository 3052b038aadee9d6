#include "OS/Mac/Devices/HardwareManager.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Devices/ComPort.h"
#include "OS/Mac/Devices/FirewireDevice.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <algorithm>
#include <cerrno>

using OSInternal::printLine;
using OSInternal::reportAssertion;

namespace {

constexpr std::size_t kLongestPathBytes = 1023;

HardwareManager::Registry (*openRegistry)() = &Host::openSerialRegistry;

} // namespace

void HardwareManager::setRegistry(Registry (*open)())
{
    openRegistry = open ? open : &Host::openSerialRegistry;
}

int HardwareManager::FindPorts(std::vector<Host::SerialPort>* ports)
{
    const Registry registry = openRegistry();
    if (!registry)
        printLine("IOServiceMatching returned a NULL dictionary.\n");
    const int status = registry ? registry->list(*ports) : -ENODEV;
    if (status != 0)
        printLine("IOServiceGetMatchingServices returned %d\n", status);
    return status;
}

void HardwareManager::getComPorts(
    std::map<LightweightString<wchar_t>, LightweightString<wchar_t>>& ports) const
{
    std::vector<Host::SerialPort> found;
    if (FindPorts(&found) != 0)
        reportAssertion("kernResult == KERN_SUCCESS", "OS/Mac/HardwareManager line 66");
    for (Host::SerialPort& port : found) {
        // A path is never longer than this; one that is was made up, and is cut.
        if (port.device.size() > kLongestPathBytes) {
            reportAssertion("result", "OS/Mac/HardwareManager line 91");
            port.device.resize(kLongestPathBytes);
        }
        const LightweightString<wchar_t> path = OS()->utils()->fromUTF8(port.device.c_str(), -1);
        ports[path] = path;
    }
}

bool HardwareManager::getSerialPorts(std::vector<Details>& ports) const
{
    const Registry registry = openRegistry();
    std::vector<Host::SerialPort> found;
    if (!registry || registry->list(found) != 0)
        return false;
    std::sort(found.begin(), found.end(),
              [](const auto& a, const auto& b) { return a.device < b.device; });
    ports.clear();
    for (const Host::SerialPort& port : found) {
        Details details;
        details.path_ = OS()->utils()->fromUTF8(port.device.c_str(), -1);
        // A device may call itself anything, in any encoding.
        details.manufacturer_ = OSInternal::textFromSystem(port.manufacturer);
        details.product_ = OSInternal::textFromSystem(port.product);
        details.serialNumber_ = OSInternal::textFromSystem(port.serialNumber);
        details.vendorID_ = port.vendorID;
        details.productID_ = port.productID;
        ports.push_back(std::move(details));
    }
    return true;
}

Tq::Ptr<iComPort> HardwareManager::openComPort(const LightweightString<wchar_t>& path,
                                               Tq::Ptr<iComPortReceiver> receiver) const
{
    return ComPort::open(OS()->utils()->toUTF8(path).c_str(), std::move(receiver));
}

Tq::Ptr<iFirewireDevice>
HardwareManager::getFirewireDevice(const LightweightString<wchar_t>& name) const
{
    return FirewireDevice::findDevice(name);
}

void HardwareManager::registerForDeviceEvents(Tq::Ptr<iDeviceEventHandler> handler)
{
    deviceEventHandler_ = std::move(handler);
}
