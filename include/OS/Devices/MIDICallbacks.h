#pragma once

#include <OS/Core/Export.h>

class iMidiInputDevice;

/// Takes what an input device receives; the application's. Called on the device's own thread, with
/// no lock held, between its start() and its stop(). It must not close or delete the device.
class OS_API InputCallbackReceiver
{
public:
    virtual ~InputCallbackReceiver() = default;

    /// A short message.
    /// @param index the number that the device was opened with @param device the device
    /// @param message the first four bytes of the packet, lowest first; those it lacks are 0.
    ///                Deliberately, a packet with several messages reports its first as many times
    ///                as it has messages, and a system-exclusive message that fits into one packet
    ///                is reported here, by its first four bytes
    virtual void handleShortMsg(unsigned int index, iMidiInputDevice* device,
                                unsigned int message) = 0;

    /// A system-exclusive message that came in several packets, or 1024 bytes of a longer one.
    /// Deliberately, those that came complete in one packet since the last stand before it, and so
    /// do real-time bytes that came in its midst.
    /// @param data valid during the call @param size 1 to 1024
    virtual void handleLongMsg(unsigned int index, iMidiInputDevice* device,
                               const unsigned char* data, unsigned int size) = 0;
};

/// Kept by an output device and never called, deliberately.
class OS_API OutputCallbackReceiver
{
public:
    virtual ~OutputCallbackReceiver() = default;
};
