#pragma once

#include <OS/Core/Export.h>
#include <OS/Core/TqResult.h>

class iMIDIHdr;

/// A destination of MIDI messages, opened by iMIDI::open and deleted by the caller.
///
/// Messages go out in the order of the calls; only real-time messages (0xF8 and above) overtake a
/// long message under way. Sending may be done by several threads; closing and deleting belongs to
/// one, with no other operation under way.
class OS_API iMidiOutputDevice
{
public:
    virtual ~iMidiOutputDevice() = default;

    /// Completes long messages under way, sent or not, then lets go of the destination and waits
    /// for that. @return 1
    virtual TqResult close() = 0;

    /// Sets the buffer's length to 256, deliberately. @return 1
    virtual TqResult unprepareHeader(iMIDIHdr* header) = 0;

    /// Sends a short message.
    /// @param message its bytes, lowest first. Deliberately all four are always sent, whatever the
    ///                status. A destination that goes by the bytes hears zeros behind a message of
    ///                two as more messages of running status
    /// @return 1; 0 after the lines of a refusal, which is also what a destination gets that is
    ///         gone or takes nothing for five seconds
    virtual TqResult shortMsg(unsigned int message) = 0;

    /// Begins to send a long message and returns. The thread "MIDISysEx" sends it in pieces of 256
    /// bytes, at the pace of a MIDI cable where the destination is hardware, and then has the
    /// buffer freed: exactly once, whether all went out or the destination or the device went away.
    /// @param header filled with the message; its length becomes the smaller of `length` and 256
    /// @param length bytes to send; deliberately not limited by the buffer, behind whose
    ///               iMIDIHdr::kDataSize bytes zeros are sent
    /// @return 1; 0 for a null buffer, or after the lines of a refusal: the buffer is the caller's
    ///         still
    virtual TqResult longMsg(iMIDIHdr* header, unsigned int length) = 0;

    /// @return 1; does nothing, deliberately
    virtual TqResult reset() = 0;

    /// @return 1; leaves the argument as it is, deliberately
    virtual TqResult getID(unsigned int& id) = 0;
};
