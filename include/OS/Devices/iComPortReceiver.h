#pragma once

#include <OS/Core/iObject.h>

/// What an application gives to iHardwareManager::openComPort to get a serial port's bytes.
///
/// Both operations are called on the port's own "ComPort" thread, in turn, with no lock held. They
/// may use the port, and even let it go. An exception that escapes them ends the process.
class OS_API iComPortReceiver : public iObject
{
public:
    /// The bytes are in the buffer that getBuffer() gave last.
    /// @param count 1 to 8
    virtual void dataReceived(unsigned int count) = 0;
    /// Where the next bytes go; asked before each read.
    /// @return room for at least 8 bytes. Null ends the reading
    virtual void* getBuffer() = 0;
};
