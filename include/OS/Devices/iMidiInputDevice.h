#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/TqResult.h>

/// A source of MIDI messages, opened by iMIDI::open and deleted by the caller.
///
/// Its messages reach the receiver on the device's own thread ("CFRUNMIDI"). Operations belong to
/// one thread at a time; stop() may be called by any, also from the receiver. A device that is
/// deleted while it is started is stopped first. Never close or delete it from its receiver.
class OS_API iMidiInputDevice
{
public:
    virtual ~iMidiInputDevice() = default;

    /// Lets go of the source and waits for that; stop() comes before it. One that was not stopped
    /// is. @return 1
    virtual TqResult close() = 0;

    /// Begins to deliver, without waiting for it. What came since open() is delivered first, as far
    /// as it was kept. @return 1
    virtual TqResult start() = 0;

    /// Ends delivering; a stop that comes before delivering has begun counts too. A message being
    /// delivered is finished, so the receiver may be called once more. @return 1
    virtual TqResult stop() = 0;

    /// @return 1; does nothing, deliberately
    virtual TqResult reset() = 0;

    /// @return 1; leaves the argument as it is, deliberately
    virtual TqResult getID(unsigned int& id) = 0;
};
