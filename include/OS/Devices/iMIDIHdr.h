#pragma once

#include <OS/Core/Export.h>

/// A buffer for one long message, made by iMIDI::allocHeader.
///
/// Filled by its owner, then handed to iMidiOutputDevice::longMsg, which has it freed; one that was
/// not handed over goes back through iMIDI::freeHeader. One thread at a time.
class OS_API iMIDIHdr
{
public:
    /// The bytes that every buffer holds.
    static constexpr unsigned int kDataSize = 262;

    /// @return 0, deliberately
    virtual unsigned int getFlags() const = 0;
    /// The data: kDataSize bytes, zeros at first, to be written and read.
    virtual unsigned char* getData() = 0;
    /// The length: the size it was made with, or what longMsg or unprepareHeader set.
    virtual unsigned int getBytesRecorded() const = 0;

protected:
    ~iMIDIHdr() = default; // no slot: freeHeader knows the class
};
