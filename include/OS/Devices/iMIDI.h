#pragma once

#include <OS/Core/LightweightString.h>
#include <OS/Core/TqResult.h>
#include <OS/Core/iObject.h>
#include <OS/Devices/MIDICallbacks.h>
#include <OS/Devices/iMIDIHdr.h>
#include <OS/Devices/iMidiInputDevice.h>
#include <OS/Devices/iMidiOutputDevice.h>

/// The application's own records of what a device can do; this library never fills them.
struct MIDIInCaps;
struct MIDIOutCaps;

/// MIDI devices, reached as OS()->midi(). Any thread.
///
/// A number names a device by its place among those attached at that moment: count, then open. What
/// a device is called is asked of iMIDIDeviceInfo, reached by a dynamic_cast from this interface.
///
/// Where the host's MIDI services refuse something, "result %d\n" and an assertion report are
/// printed and the operation yields 0. A machine without MIDI services has no devices; that is no
/// failure and prints nothing.
class OS_API iMIDI : public iObject
{
public:
    /// Connects to the host's MIDI services, once; every count does it too. The environment
    /// variable VANTOR_MIDI ("alsa", "jack" or "none") chooses among them; otherwise ALSA serves,
    /// else a JACK server that runs, else none.
    /// @return 1; deliberately 1 at once while connected already. 0 only where the services fail
    virtual TqResult initialise() = 0;

    /// Ends the connection, if there is one: long messages under way are completed unsent and their
    /// sender ends. Devices still open carry on until they are closed but send no more long
    /// messages. initialise() connects anew.
    virtual void deinitialise() = 0;

    /// Opens a source of messages, on the new device's own thread, and waits for that.
    /// @param out the new device, also when opening failed; the caller deletes it
    /// @param index below getNumInputDevs(); beyond it the result is 0 without a message
    /// @param receiver called on the device's thread while it is started; must outlive the device
    /// @return 1, or 0
    virtual TqResult open(iMidiInputDevice*& out, unsigned int index,
                          InputCallbackReceiver& receiver) = 0;

    /// Opens a destination, likewise. @param receiver kept and never called, deliberately
    virtual TqResult open(iMidiOutputDevice*& out, unsigned int index,
                          OutputCallbackReceiver& receiver) = 0;

    /// How many sources and destinations there are now; connects first where that is still to be
    /// done. This library's own ports do not count.
    virtual unsigned int getNumInputDevs() = 0;
    virtual unsigned int getNumOutputDevs() = 0;

    /// Fills nothing and returns 1, whatever the index; deliberate.
    virtual TqResult getInputDevCaps(unsigned int index, MIDIInCaps& caps) = 0;
    virtual TqResult getOutputDevCaps(unsigned int index, MIDIOutCaps& caps) = 0;

    /// Makes a buffer for one long message. @param size its length at first; deliberately it
    /// always holds iMIDIHdr::kDataSize bytes, whatever is asked
    virtual iMIDIHdr* allocHeader(unsigned short size) = 0;
    /// Deletes a buffer that no long message under way uses. Null is ignored.
    virtual void freeHeader(iMIDIHdr* header) = 0;

    /// @return an empty text, deliberately
    virtual LightweightString<wchar_t> getResultText(TqResult result) = 0;
};
