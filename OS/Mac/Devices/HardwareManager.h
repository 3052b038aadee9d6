#pragma once

#include <OS/Devices/iHardwareManager.h>

/// iHardwareManager.
class HardwareManager final : public iHardwareManager
{
};
