#pragma once

#include <OS/Core/iObject.h>

/// What an application registers for the coming and going of devices. Nothing calls it,
/// deliberately: it has no operations.
class OS_API iDeviceEventHandler : public iObject
{
};
