#pragma once

#include <OS/Core/iObject.h>

#include <cstdint>

/// An open serial port, made by iHardwareManager::openComPort; letting it go closes it.
///
/// What comes in goes to the receiver given at opening, at most 8 bytes a call, on a thread of the
/// port's own that ends with the first read that fails (the device was unplugged, the line hung
/// up); nothing starts it again. Call setConfig right after opening: deliberately, a reader that
/// finds no data on a port that is not configured ends within a twentieth of a second.
///
/// Any thread may call any operation. The destructor waits until all output is sent ("Error waiting
/// for drain - %s(%d).\n" when that fails) and until the reader has ended, unless it runs on the
/// reader itself.
class OS_API iComPort : public iObject
{
public:
    struct Config
    {
        std::uint32_t parity;   ///< 0 none, 1 even, 2 odd
        std::uint32_t stopBits; ///< 1 means two stop bits, any other value one; deliberate
        std::uint32_t baudRate; ///< 9600, 19200 or 38400; any other value keeps the speed
        std::uint32_t dataBits; ///< 7, or any other value for eight
    };

    /// The modem lines. Deliberately, switching one on switches every other one off.
    enum eCommand : int
    {
        eDTROn = 0,
        eDTROff = 1,
        eRTSOn = 2,
        eRTSOff = 3,
    };

    /// Writes once. Blocks while the device takes nothing, once setConfig has succeeded.
    /// @return whether the device took everything
    virtual bool sendData(void* data, unsigned int length) = 0;
    /// @return false when the device refuses, and for anything that is no command
    virtual bool sendCommand(eCommand command) = 0;
    /// Drops what has come in and has not been read. Output is left alone, deliberately.
    virtual void purge() = 0;
    /// Makes the port blocking and raw, and sets the line: the receiver enabled, the modem lines
    /// heeded, no flow control. A process that has an action for SIGIO loses it, deliberately.
    ///
    /// A device that refuses its settings is reported ("failed get old tio\n", "failed set
    /// options\n") and counts as configured all the same; deliberate.
    /// @return false when the port cannot be made blocking; nothing is applied then
    virtual bool setConfig(const Config& config) = 0;
};
