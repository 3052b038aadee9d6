#pragma once

#include <OS/Core/iObject.h>

/// A FireWire tape device. There are none: iHardwareManager::getFirewireDevice is always null.
class OS_API iFirewireDevice : public iObject
{
public:
    enum eMode : int
    {
        eStopped = 0,
        ePlaying = 1,
        eRecording = 2,
        eUnknown = 3,
    };

    /// Always eUnknown (3).
    virtual eMode getMode() = 0;
    /// Does nothing. @return false
    virtual bool setMode(eMode mode) = 0;
};
