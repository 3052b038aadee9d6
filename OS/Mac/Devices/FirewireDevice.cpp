#include "OS/Mac/Devices/FirewireDevice.h"

Tq::Ptr<iFirewireDevice> FirewireDevice::findDevice(const LightweightString<wchar_t>&)
{
    return {};
}
