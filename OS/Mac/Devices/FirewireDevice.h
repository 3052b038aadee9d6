#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/Ptr.h>
#include <OS/Devices/iFirewireDevice.h>

/// iFirewireDevice, as far as it goes.
class FirewireDevice final : public iFirewireDevice
{
public:
    /// Always null.
    static Tq::Ptr<iFirewireDevice> findDevice(const LightweightString<wchar_t>& name);

    eMode getMode() override { return eUnknown; }
    bool setMode(eMode) override { return false; }
};
